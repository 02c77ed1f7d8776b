#include "api/TBReachabilityManager.h"

#include "core/TBConstants.h"
#include "platform/NotificationCenter.h"
#include "platform/Reachability.h"
#include "platform/SharedInstance.h"

namespace tb {

TBReachabilityManager::TBReachabilityManager(Reachability* reachability,
                                             NotificationCenter& notifications)
    : reachability_(reachability), notifications_(notifications) {}

TBReachabilityManager::~TBReachabilityManager() = default;

TBReachabilityManager& TBReachabilityManager::shared() {
    return SharedInstance<TBReachabilityManager>::get();
}

void TBReachabilityManager::start() {
    if (!reachability_ || started_) {
        return;
    }
    started_ = true;
    auto postIfAlive = [this, alive = std::weak_ptr<bool>(alive_)](const char* name) {
        if (alive.lock()) {
            notifications_.post(name);
        }
    };
    const auto& names = TBConstants::TBGlobalNotifications();
    reachability_->startNotifier(
        [postIfAlive, name = names.networkBecameReachable] { postIfAlive(name); },
        [postIfAlive, name = names.networkBecameUnreachable] { postIfAlive(name); });
}

bool TBReachabilityManager::isOffline() const {
    return reachability_ && !reachability_->isReachable();
}

bool TBReachabilityManager::isWiFiReachable() const {
    return !reachability_ || reachability_->isReachableViaWiFi();
}

}  // namespace tb
