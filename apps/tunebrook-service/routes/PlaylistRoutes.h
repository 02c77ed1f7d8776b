#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// One playlist with its tracks, the playlist categories, and the playlists of a category.
class PlaylistRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
