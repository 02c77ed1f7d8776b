#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "platform/Reachability.h"

namespace tb {

class MainQueue;

struct HostAndPort {
    std::string host;
    int port = 0;
    bool operator==(const HostAndPort&) const = default;
};

// The host and port of a service base URL ("https://api.example.com/v1/" gives
// api.example.com and 443; an explicit port wins; IPv6 literals come without brackets).
// Nothing for a URL without a host, with an unknown scheme and no port, or a bad port.
std::optional<HostAndPort> hostAndPortOfURL(const std::string& url);

// Reachability of the service's host, found by trying a TCP connection: at start and then
// every few seconds, on a thread of its own, each try cut off after a short time-out. The
// callbacks run on the main queue, once with the first reading and then at each change.
// A desktop has no cellular links but modems: a connection through an interface named
// "wwan*" or "rmnet*" counts as cellular, any other as Wi-Fi. Until the first reading the
// host counts as reachable. The thread stops when the object is destroyed.
class LinuxReachability final : public Reachability {
  public:
    struct Options {
        double intervalSeconds = 5.0;
        double connectTimeoutSeconds = 2.0;
    };

    LinuxReachability(HostAndPort target, MainQueue& queue, Options options);
    LinuxReachability(HostAndPort target, MainQueue& queue)
        : LinuxReachability(std::move(target), queue, Options{}) {}
    ~LinuxReachability() override;
    LinuxReachability(const LinuxReachability&) = delete;
    LinuxReachability& operator=(const LinuxReachability&) = delete;

    bool isReachable() const override;
    bool isReachableViaWiFi() const override;
    void startNotifier(std::function<void()> becameReachable,
                       std::function<void()> becameUnreachable) override;

  private:
    struct Reading {
        bool reachable = false;
        bool cellular = false;
    };
    struct Notifier;

    void watch();
    Reading tryConnect() const;
    void publish(Reading reading);

    HostAndPort target_;
    MainQueue& queue_;
    Options options_;
    std::atomic<bool> reachable_{true};
    std::atomic<bool> cellular_{false};
    std::atomic<bool> hasReading_{false};
    // What posted tasks share with this object; they outlive it safely.
    std::shared_ptr<Notifier> notifier_;
    int wakeFds_[2] = {-1, -1};
    std::thread watcher_;
};

}  // namespace tb
