#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// POST music/<id>/play: with "time" it is the report of real listening time; otherwise it
// answers the song's playable address as a JSON string, and counts a play when "session" is
// given, once per session and song.
class StreamRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
