#include "tunebrook-service/http/ConnectionProbe.h"

#include <cstdlib>
#include <string>

#include <arpa/inet.h>
#include <dirent.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tb::service {

namespace {

int port(const sockaddr_storage& address) {
    if (address.ss_family == AF_INET) {
        return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
    }
    if (address.ss_family == AF_INET6) {
        return ntohs(reinterpret_cast<const sockaddr_in6&>(address).sin6_port);
    }
    return -1;
}

}  // namespace

int ConnectionProbe::find(int localPort, int remotePort) {
    DIR* dir = opendir("/proc/self/fd");
    if (!dir) {
        return -1;
    }
    int found = -1;
    while (dirent* entry = readdir(dir)) {
        char* end = nullptr;
        long fd = std::strtol(entry->d_name, &end, 10);
        if (end == entry->d_name || *end != '\0' || fd == dirfd(dir)) {
            continue;
        }
        sockaddr_storage local{};
        sockaddr_storage peer{};
        socklen_t localLength = sizeof local;
        socklen_t peerLength = sizeof peer;
        if (getsockname(static_cast<int>(fd), reinterpret_cast<sockaddr*>(&local), &localLength) !=
                0 ||
            getpeername(static_cast<int>(fd), reinterpret_cast<sockaddr*>(&peer), &peerLength) !=
                0) {
            continue;
        }
        if (port(local) == localPort && port(peer) == remotePort) {
            found = static_cast<int>(fd);
            break;
        }
    }
    closedir(dir);
    return found;
}

bool ConnectionProbe::peerClosed(int fd) {
    pollfd probe{fd, POLLIN | POLLRDHUP, 0};
    if (poll(&probe, 1, 0) <= 0) {
        return false;
    }
    if (probe.revents & (POLLRDHUP | POLLHUP | POLLERR)) {
        return true;
    }
    char byte;
    return recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

void ConnectionProbe::reset(int fd) {
    linger option{1, 0};
    setsockopt(fd, SOL_SOCKET, SO_LINGER, &option, sizeof option);
    // Closing the last reference with a zero linger sends the reset; putting a fresh socket
    // in the descriptor's place closes it without pulling the number from under its owner.
    int placeholder = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (placeholder >= 0) {
        dup2(placeholder, fd);
        close(placeholder);
    } else {
        shutdown(fd, SHUT_RDWR);
    }
}

}  // namespace tb::service
