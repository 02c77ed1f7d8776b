#pragma once

#include <memory>

namespace tb {

class NotificationCenter;
class Reachability;

// Whether the service's web host can be reached (the app builds the Reachability for it). start()
// begins watching; every change is posted as networkBecameReachable or networkBecameUnreachable
// through the notification centre (the offline toast, for one, forgets that it has shown when the
// network is back).
class TBReachabilityManager {
  public:
    // `reachability` may be null: the app then counts as online, on Wi-Fi.
    TBReachabilityManager(Reachability* reachability, NotificationCenter& notifications);
    ~TBReachabilityManager();
    TBReachabilityManager(const TBReachabilityManager&) = delete;
    TBReachabilityManager& operator=(const TBReachabilityManager&) = delete;

    static TBReachabilityManager& shared();

    Reachability* reachability() const { return reachability_; }

    // Begins the notifier; a second call does nothing.
    void start();

    // True when the host is known to be unreachable; false without a reachability.
    bool isOffline() const;
    // True without a reachability.
    bool isWiFiReachable() const;

  private:
    Reachability* reachability_;
    NotificationCenter& notifications_;
    bool started_ = false;
    // The notifier may outlive this object; its callbacks check that this still exists.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tb
