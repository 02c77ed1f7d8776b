#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// Login by email and password or by a social token, sign-up, the address check and the
// forgotten password. All of them need only the consumer's signature.
class AuthRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
