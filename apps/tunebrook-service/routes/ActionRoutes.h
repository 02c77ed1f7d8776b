#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// A listener's favourites, reposts and follows: PUT sets, DELETE clears.
class ActionRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
