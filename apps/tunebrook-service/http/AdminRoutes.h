#pragma once

namespace httplib {
class Server;
}

namespace tb::service {

class FaultInjector;
struct ServiceContext;

// Unsigned endpoints under /admin/ for tests and the demo, answered only to loopback peers:
//   GET /admin/health
//   GET /admin/report[?kind=K&since=ID]   what the service was told; DELETE clears it
//   POST /admin/tokens/expire             {"account_id"|"token"|"email"} or {} for all
//   GET|POST|DELETE /admin/faults, DELETE /admin/faults/<id>
//   POST /admin/music/<id>/status         {"status": "takedown", "geo_restricted": true}
//   POST /admin/notifications             {"account_id", "verb", "actor_id", ...}
//   POST /admin/remote-config             {key: value, ...}: the whole set GET /remote-config
//   serves
class AdminRoutes {
  public:
    static void install(httplib::Server& server, ServiceContext& context, FaultInjector& faults);
};

}  // namespace tb::service
