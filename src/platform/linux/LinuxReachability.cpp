#include "platform/linux/LinuxReachability.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/MainQueue.h"
#include "platform/StringUtil.h"

namespace tb {

namespace {

std::optional<int> portNumber(const std::string& text) {
    if (text.empty() || text.size() > 5 ||
        !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); })) {
        return std::nullopt;
    }
    const int port = std::stoi(text);
    return port >= 1 && port <= 65535 ? std::optional<int>(port) : std::nullopt;
}

bool sameAddress(const sockaddr* a, const sockaddr* b) {
    if (!a || !b || a->sa_family != b->sa_family) {
        return false;
    }
    if (a->sa_family == AF_INET) {
        return reinterpret_cast<const sockaddr_in*>(a)->sin_addr.s_addr ==
               reinterpret_cast<const sockaddr_in*>(b)->sin_addr.s_addr;
    }
    if (a->sa_family == AF_INET6) {
        return std::memcmp(&reinterpret_cast<const sockaddr_in6*>(a)->sin6_addr,
                           &reinterpret_cast<const sockaddr_in6*>(b)->sin6_addr,
                           sizeof(in6_addr)) == 0;
    }
    return false;
}

// Whether the interface that owns `local` is a mobile modem.
bool isCellularInterface(const sockaddr* local) {
    ifaddrs* interfaces = nullptr;
    if (::getifaddrs(&interfaces) != 0) {
        return false;
    }
    bool cellular = false;
    for (const ifaddrs* entry = interfaces; entry; entry = entry->ifa_next) {
        if (sameAddress(entry->ifa_addr, local)) {
            const std::string name = entry->ifa_name ? entry->ifa_name : "";
            cellular = name.starts_with("wwan") || name.starts_with("rmnet");
            break;
        }
    }
    ::freeifaddrs(interfaces);
    return cellular;
}

}  // namespace

std::optional<HostAndPort> hostAndPortOfURL(const std::string& url) {
    const auto schemeEnd = url.find("://");
    if (schemeEnd == std::string::npos) {
        return std::nullopt;
    }
    const std::string scheme = lowercased(url.substr(0, schemeEnd));
    std::string authority = url.substr(schemeEnd + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    if (const auto at = authority.rfind('@'); at != std::string::npos) {
        authority = authority.substr(at + 1);
    }
    HostAndPort result;
    std::string portText;
    if (authority.starts_with("[")) {
        const auto close = authority.find(']');
        if (close == std::string::npos) {
            return std::nullopt;
        }
        result.host = authority.substr(1, close - 1);
        const std::string rest = authority.substr(close + 1);
        if (!rest.empty()) {
            if (!rest.starts_with(":")) {
                return std::nullopt;
            }
            portText = rest.substr(1);
        }
    } else {
        const auto colon = authority.find(':');
        result.host = authority.substr(0, colon);
        if (colon != std::string::npos) {
            portText = authority.substr(colon + 1);
        }
    }
    if (result.host.empty()) {
        return std::nullopt;
    }
    if (!portText.empty()) {
        const auto port = portNumber(portText);
        if (!port) {
            return std::nullopt;
        }
        result.port = *port;
    } else if (scheme == "https") {
        result.port = 443;
    } else if (scheme == "http") {
        result.port = 80;
    } else {
        return std::nullopt;
    }
    return result;
}

// Main-queue state: the callbacks and what they were last told. Posted tasks hold it, so
// a task that arrives after the reachability object is gone finds `alive` false.
struct LinuxReachability::Notifier {
    bool alive = true;
    bool started = false;
    std::optional<bool> lastTold;
    std::function<void()> becameReachable;
    std::function<void()> becameUnreachable;

    void tell(bool reachable) {
        if (!alive || !started || lastTold == reachable) {
            return;
        }
        lastTold = reachable;
        const auto& callback = reachable ? becameReachable : becameUnreachable;
        if (callback) {
            callback();
        }
    }
};

LinuxReachability::LinuxReachability(HostAndPort target, MainQueue& queue, Options options)
    : target_(std::move(target)),
      queue_(queue),
      options_(options),
      notifier_(std::make_shared<Notifier>()) {
    if (::pipe2(wakeFds_, O_CLOEXEC | O_NONBLOCK) != 0) {
        wakeFds_[0] = wakeFds_[1] = -1;
    }
    watcher_ = std::thread([this] { watch(); });
}

LinuxReachability::~LinuxReachability() {
    notifier_->alive = false;
    if (wakeFds_[1] >= 0) {
        const char stop = 1;
        (void)!::write(wakeFds_[1], &stop, 1);
    }
    watcher_.join();
    for (int fd : wakeFds_) {
        if (fd >= 0) {
            ::close(fd);
        }
    }
}

bool LinuxReachability::isReachable() const {
    return reachable_;
}

bool LinuxReachability::isReachableViaWiFi() const {
    return reachable_ && !cellular_;
}

void LinuxReachability::startNotifier(std::function<void()> becameReachable,
                                      std::function<void()> becameUnreachable) {
    notifier_->becameReachable = std::move(becameReachable);
    notifier_->becameUnreachable = std::move(becameUnreachable);
    notifier_->started = true;
    // A reading taken before the notifier started is told now, as the first one.
    if (hasReading_) {
        queue_.post([notifier = notifier_, this] {
            if (notifier->alive) {
                notifier->tell(reachable_);
            }
        });
    }
}

// The watcher thread: a try at once, then one per interval until woken to stop.
void LinuxReachability::watch() {
    const int intervalMs = static_cast<int>(options_.intervalSeconds * 1000);
    for (;;) {
        publish(tryConnect());
        pollfd wake{wakeFds_[0], POLLIN, 0};
        int woken = 0;
        do {
            woken = wakeFds_[0] < 0 ? 1 : ::poll(&wake, 1, intervalMs);
        } while (woken < 0 && errno == EINTR);
        if (woken != 0) {
            return;
        }
    }
}

void LinuxReachability::publish(Reading reading) {
    cellular_ = reading.cellular;
    const bool changed = reachable_.exchange(reading.reachable) != reading.reachable;
    const bool first = !hasReading_.exchange(true);
    if (changed || first) {
        queue_.post(
            [notifier = notifier_, reachable = reading.reachable] { notifier->tell(reachable); });
    }
}

// One TCP connection attempt to any address of the host, given up after the time-out or
// when the object is being destroyed.
LinuxReachability::Reading LinuxReachability::tryConnect() const {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV;
    addrinfo* addresses = nullptr;
    const std::string service = std::to_string(target_.port);
    if (::getaddrinfo(target_.host.c_str(), service.c_str(), &hints, &addresses) != 0) {
        return {};
    }
    Reading reading;
    const int timeoutMs = static_cast<int>(options_.connectTimeoutSeconds * 1000);
    for (const addrinfo* address = addresses; address && !reading.reachable;
         address = address->ai_next) {
        const int fd =
            ::socket(address->ai_family, address->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                     address->ai_protocol);
        if (fd < 0) {
            continue;
        }
        bool connected = ::connect(fd, address->ai_addr, address->ai_addrlen) == 0;
        if (!connected && errno == EINPROGRESS) {
            pollfd watch[2] = {{fd, POLLOUT, 0}, {wakeFds_[0], POLLIN, 0}};
            if (::poll(watch, 2, timeoutMs) > 0 && (watch[0].revents & POLLOUT)) {
                int error = 0;
                socklen_t length = sizeof error;
                connected =
                    ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error == 0;
            }
        }
        if (connected) {
            sockaddr_storage local{};
            socklen_t length = sizeof local;
            reading.reachable = true;
            reading.cellular =
                ::getsockname(fd, reinterpret_cast<sockaddr*>(&local), &length) == 0 &&
                isCellularInterface(reinterpret_cast<const sockaddr*>(&local));
        }
        ::close(fd);
    }
    ::freeaddrinfo(addresses);
    return reading;
}

}  // namespace tb
