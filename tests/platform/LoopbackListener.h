#pragma once

#include <cstdint>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace tb::test {

// A listener on loopback that a test opens and closes; its port stays the same across reopens.
class LoopbackListener {
  public:
    LoopbackListener() { open(0); }
    ~LoopbackListener() { close(); }

    void open(int port) {
        fd_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const int yes = 1;
        ::setsockopt(fd_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        ASSERT_EQ(::bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(::listen(fd_, 16), 0);
        socklen_t length = sizeof address;
        ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length);
        port_ = ntohs(address.sin_port);
    }
    void close() {
        if (fd_ >= 0) {
            ::close(fd_);
            fd_ = -1;
        }
    }
    int port() const { return port_; }

  private:
    int fd_ = -1;
    int port_ = 0;
};

// A port on loopback that nothing listens on: opened, then closed again.
inline int closedLoopbackPort() {
    return LoopbackListener().port();
}

}  // namespace tb::test
