#pragma once

#include <string>
#include <vector>

#include "tunebrook-service/http/FormParams.h"

namespace tb::service {

// The body of an API request as read by the service itself (the HTTP library's own form
// parsing stops at 8 KB, below what a long list of ids needs): the raw text, or the text
// fields of a multipart body.
struct RequestBody {
    std::string text;
    bool multipart = false;
    std::vector<FormParam> fields;
    bool tooLarge = false;  // over the limit: not to be used
    bool cutShort = false;  // the peer stopped sending it in time, or broke its encoding
};

}  // namespace tb::service
