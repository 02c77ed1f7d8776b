#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// Charts by type, period and genre; trending and recently added music by genre.
class ChartRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
