#pragma once

#include <optional>

#include "platform/Error.h"
#include "platform/HttpTransport.h"
#include "platform/JSON.h"

namespace tb {

// How both request paths read an answer as JSON, leniently (see JSON::parse). A 2xx status
// whose body parses (a bare value counts; a blank body is null) succeeds. Otherwise the error
// says why: the transport's own error, -1011 for a missing response or a status outside
// 200-299, -1016 for a body that isn't JSON. The content type is not looked at: the service
// labels some JSON answers as text, and they are read all the same.
class JSONResponseSerializer {
  public:
    struct Serialized {
        // The parsed body; nothing when no response came or its body isn't JSON.
        std::optional<JSON> json;
        std::optional<Error> error;
    };

    static Serialized serialize(const HttpRequest& request, const HttpResult& result);
};

}  // namespace tb
