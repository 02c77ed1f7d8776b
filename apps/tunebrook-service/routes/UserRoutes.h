#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// The signed-in listener's record, feed and notifications.
class UserRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
