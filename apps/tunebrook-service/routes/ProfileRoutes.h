#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// The listener's profile edit: PUT "user/profile" with the changed public fields.
class ProfileRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
