#pragma once

#include <cstddef>

namespace tb::service {

// How long and how large the parts of one request may be. A connection that takes longer
// is answered 408 and closed; one that is larger is answered 413, 414 or 431.
struct ConnectionLimits {
    double headSeconds = 10;  // request line and headers, counted from their first byte
    double bodySeconds = 30;  // the whole body, counted from the end of the headers
    double idleSeconds = 5;   // a kept connection's wait for its next request
    // One wait for the peer to take more of an answer: a player stops reading for a while
    // when its buffer is full.
    double writeSeconds = 120;
    size_t maxLine = 8192;        // request line, with its line end
    size_t maxHeaderLine = 8192;  // one header line, with its line end
    size_t maxHead = 64 * 1024;   // request line and headers together
    size_t maxHeaders = 100;
    size_t maxBody = 1024 * 1024;
    size_t maxConnections = 1024;  // served at once; later ones wait for a free thread
};

}  // namespace tb::service
