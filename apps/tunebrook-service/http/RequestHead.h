#pragma once

#include <cstdint>
#include <string>

#include "tunebrook-service/http/ConnectionLimits.h"

namespace tb::service {

// The request line and headers at the start of a connection's received bytes, checked
// before the HTTP library reads them: the library would wait for more than a head may
// take, answer limits with a closed connection, or wait for the peer to close when a body
// has no length.
struct RequestHead {
    enum class State { incomplete, ready, refused };
    // Where the library reads the client's Range header from; the media routes answer
    // ranges themselves, and the library's own check refuses ranges they serve whole.
    static constexpr const char* kRangeHeader = "X-Byte-Range";

    State state = State::incomplete;
    int status = 0;           // the answer when refused
    size_t length = 0;        // bytes of the head, its blank line included, when ready
    uint64_t bodyLength = 0;  // from Content-Length
    bool chunked = false;

    // Looks at `bytes` and, once the head is whole, rewrites it for the library: the Range
    // header renamed, and "Content-Length: 0" added to a DELETE that announces no body.
    static RequestHead examine(std::string& bytes, const ConnectionLimits& limits);
};

}  // namespace tb::service
