#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

#include "api/TBJSONResponse.h"
#include "platform/Promise.h"

namespace tb {

class MainQueue;
class TBSessionManager;

// One typed request: the parameters URL-encoded (into the query for GET, HEAD and DELETE,
// else into a form body), sent through the session, and the answer read by
// JSONResponseSerializer, so that only a 2xx status with a body that is JSON (an empty body
// being null) succeeds. A failure rejects with a TBJSONError (as its Error) holding the
// error, the JSON of the body when it parsed, the request and the response. Nothing here
// handles a 401: the caller decides.
class TBJSONRequest {
  public:
    static Promise<TBJSONResponse> send(TBSessionManager& session,
                                        MainQueue& queue,
                                        const std::string& method,
                                        const std::string& url,
                                        const nlohmann::json& parameters);

    // The request as it goes to the session, before the session's headers and adapter.
    static HttpRequest encoded(const std::string& method,
                               const std::string& url,
                               const nlohmann::json& parameters);
};

}  // namespace tb
