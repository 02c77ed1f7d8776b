#include "tunebrook-service/http/ConnectionStream.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace tb::service {

namespace {

using Clock = ConnectionStream::Clock;

// Waits until `deadline` for `events` on `fd`; the events that came, or 0 when none did.
short waitFor(int fd, short events, Clock::time_point deadline) {
    for (;;) {
        auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd probe{fd, events, 0};
        int ready = ::poll(&probe, 1, static_cast<int>(std::clamp<long long>(left, 0, INT_MAX)));
        if (ready > 0) {
            return probe.revents;
        }
        if (ready == 0) {
            return 0;
        }
        if (errno != EINTR) {
            return POLLERR;
        }
    }
}

void describe(const sockaddr_storage& address, std::string& ip, int& port) {
    char text[INET6_ADDRSTRLEN] = {};
    if (address.ss_family == AF_INET) {
        const auto& v4 = reinterpret_cast<const sockaddr_in&>(address);
        inet_ntop(AF_INET, &v4.sin_addr, text, sizeof text);
        port = ntohs(v4.sin_port);
    } else if (address.ss_family == AF_INET6) {
        const auto& v6 = reinterpret_cast<const sockaddr_in6&>(address);
        inet_ntop(AF_INET6, &v6.sin6_addr, text, sizeof text);
        port = ntohs(v6.sin6_port);
    }
    ip = text;
}

}  // namespace

ConnectionStream::ConnectionStream(int fd, Clock::duration writeWait)
    : fd_(fd), writeWait_(writeWait), readDeadline_(Clock::now()) {}

std::string& ConnectionStream::pending() {
    pending_.erase(0, offset_);
    offset_ = 0;
    return pending_;
}

ConnectionStream::Received ConnectionStream::receive(Clock::time_point deadline) {
    if (waitFor(fd_, POLLIN, deadline) == 0) {
        return Received::late;
    }
    char buffer[16 * 1024];
    ssize_t got = ::recv(fd_, buffer, sizeof buffer, MSG_DONTWAIT);
    if (got > 0) {
        pending_.append(buffer, static_cast<size_t>(got));
        return Received::data;
    }
    bool spurious = got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
    return spurious ? Received::data : Received::closed;
}

bool ConnectionStream::writeAll(const std::string& text) {
    size_t written = 0;
    while (written < text.size()) {
        ssize_t sent = write(text.data() + written, text.size() - written);
        if (sent <= 0) {
            return false;
        }
        written += static_cast<size_t>(sent);
    }
    return true;
}

void ConnectionStream::drain(Clock::time_point deadline, size_t limit) {
    size_t dropped = 0;
    while (dropped < limit && receive(deadline) == Received::data) {
        dropped += pending_.size();
        pending_.clear();
        offset_ = 0;
    }
}

bool ConnectionStream::is_readable() const {
    return offset_ < pending_.size() || (waitFor(fd_, POLLIN, readDeadline_) & POLLIN) != 0;
}

bool ConnectionStream::is_writable() const {
    short events = waitFor(fd_, POLLOUT, Clock::now() + writeWait_);
    return (events & POLLOUT) != 0 && (events & (POLLERR | POLLHUP)) == 0;
}

ssize_t ConnectionStream::read(char* ptr, size_t size) {
    while (offset_ == pending_.size()) {
        pending_.clear();
        offset_ = 0;
        Received received = receive(readDeadline_);
        if (received != Received::data) {
            return received == Received::closed ? 0 : -1;
        }
    }
    size_t count = std::min(size, pending_.size() - offset_);
    std::memcpy(ptr, pending_.data() + offset_, count);
    offset_ += count;
    consumed_ += count;
    return static_cast<ssize_t>(count);
}

ssize_t ConnectionStream::write(const char* ptr, size_t size) {
    if (!is_writable()) {
        return -1;
    }
    return ::send(fd_, ptr, size, MSG_NOSIGNAL);
}

void ConnectionStream::get_remote_ip_and_port(std::string& ip, int& port) const {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (::getpeername(fd_, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
        describe(address, ip, port);
    }
}

void ConnectionStream::get_local_ip_and_port(std::string& ip, int& port) const {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
        describe(address, ip, port);
    }
}

}  // namespace tb::service
