#pragma once

#include <optional>

#include "platform/HttpTransport.h"
#include "platform/JSON.h"

namespace tb {

// What a typed request of the network layer fulfils with: the answer read as JSON (null for
// an empty body), with the request as sent and the response as received.
struct TBJSONResponse {
    JSON json;
    std::optional<HttpRequest> request;
    std::optional<HttpResponse> response;
};

}  // namespace tb
