#pragma once

#include <mutex>
#include <set>

#include <httplib.h>

#include "tunebrook-service/http/ConnectionLimits.h"

namespace tb::service {

class ConnectionStream;
struct RequestHead;

// The HTTP server with its own handling of each connection. The library's routing, handlers
// and answers are kept; what it does around them is replaced, because on its own it
//  - bounds each wait for bytes but not a whole head or body, so a peer sending a byte now
//    and then holds its connection for ever;
//  - answers a body without a length only when the peer closes, and an oversize head with
//    a closed connection;
//  - drops bytes received past a request, losing a pipelined next one, and refuses to answer
//    a peer that has closed its sending side.
// Together with ConnectionThreads (one thread per connection), no number of slow or idle
// peers keeps an answer from the others.
class ConnectionServer : public httplib::Server {
  public:
    explicit ConnectionServer(ConnectionLimits limits);

    // Lets the system queue many connections before they are accepted: the library listens
    // with a queue of 5, past which a burst of peers waits out the system's retry delays.
    // Called once bound.
    void deepenBacklog();
    // Stops listening and ends every open connection; handlers under way finish.
    void shutDown();

  private:
    bool process_and_close_socket(int sock) override;
    // Serves requests on the connection until it closes, fails or is refused.
    void serve(ConnectionStream& stream);
    RequestHead readHead(ConnectionStream& stream);
    // Answers a request the library isn't given, and closes the connection after it.
    void refuse(ConnectionStream& stream, int status);
    // Reads and drops what a handler left of a body, so that the next request starts where
    // it should; false when that can't be done in time.
    bool skipTo(ConnectionStream& stream, uint64_t end);
    bool enter(int sock);
    void leave(int sock);
    bool stopping() const;

    const ConnectionLimits limits_;
    mutable std::mutex mutex_;
    std::set<int> open_;
    bool stopping_ = false;
};

}  // namespace tb::service
