#pragma once

namespace tb::service {

// Reaches the socket of the connection a request came on, for the faults that act on the
// connection itself. The HTTP library doesn't hand the socket to handlers, so it is found
// among the process's descriptors by its two ports.
class ConnectionProbe {
  public:
    // The descriptor, or -1.
    static int find(int localPort, int remotePort);
    // True when the peer has closed its side.
    static bool peerClosed(int fd);
    // Ends the connection with a reset instead of an orderly close. The descriptor stays
    // valid (it then refers to an unconnected socket) for its owner to close.
    static void reset(int fd);
};

}  // namespace tb::service
