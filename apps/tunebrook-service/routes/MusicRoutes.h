#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// One song or album by id or by slugs, the availability check of stored music, and the
// featured spots.
class MusicRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
