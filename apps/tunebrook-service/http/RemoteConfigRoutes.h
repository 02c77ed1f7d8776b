#pragma once

namespace httplib {
class Server;
}

namespace tb::service {

struct ServiceContext;

// The remote values of the client, at GET /remote-config (outside the API base): a JSON
// object of keys and values. It is not signed: the client's config store is a separate
// hosted service that knows nothing of this service's consumer keys or tokens, and the
// values are no secret. POST /admin/remote-config sets what it serves (see AdminRoutes).
class RemoteConfigRoutes {
  public:
    static constexpr const char* kPath = "/remote-config";

    static void install(httplib::Server& server, ServiceContext& context);
};

}  // namespace tb::service
