#pragma once

namespace httplib {
class Server;
}

namespace tb::service {

struct ServiceContext;

// The audio and artwork files. Audio needs a signed, unexpired address and is served with
// byte ranges; artwork is public. Files are only ever found through the catalogue: the
// request names a song id or a known artwork name, never a path.
class MediaRoutes {
  public:
    static void install(httplib::Server& server, ServiceContext& context);
};

}  // namespace tb::service
