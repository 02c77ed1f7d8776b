#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// An account's profile and its lists: uploads, favourites, playlists, who it follows, who
// follows it, its highlights; and the suggested accounts to follow.
class ArtistRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
