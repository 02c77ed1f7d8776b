#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// The list of music a listener keeps offline, as the device reports it: read it a page at a
// time, add ids to it, take one out.
class DownloadRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
