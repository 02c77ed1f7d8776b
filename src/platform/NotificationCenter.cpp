#include "platform/NotificationCenter.h"

#include <vector>

#include "platform/MainQueue.h"

namespace tb {

NotificationCenter::NotificationCenter(MainQueue& queue) : queue_(queue) {}

NotificationCenter::ObserverId NotificationCenter::addObserver(const std::string& name,
                                                               const void* object,
                                                               Block block) {
    const ObserverId id = nextId_++;
    observers_.emplace(id, Observer{name, object, std::move(block)});
    return id;
}

void NotificationCenter::removeObserver(ObserverId id) {
    observers_.erase(id);
}

void NotificationCenter::post(const std::string& name, const void* object, UserInfo userInfo) {
    Notification notification{name, object, std::move(userInfo)};
    if (queue_.isCurrent()) {
        deliver(notification);
        return;
    }
    queue_.post([this, notification = std::move(notification)] { deliver(notification); });
}

void NotificationCenter::deliver(const Notification& notification) {
    // Observers may add or remove observers while they run: take the list first, and check
    // before each call that the observer is still there.
    std::vector<ObserverId> targets;
    for (const auto& [id, observer] : observers_) {
        if (observer.name == notification.name &&
            (observer.object == nullptr || observer.object == notification.object)) {
            targets.push_back(id);
        }
    }
    for (ObserverId id : targets) {
        auto found = observers_.find(id);
        if (found == observers_.end()) {
            continue;
        }
        Block block = found->second.block;  // the observer may remove itself while it runs
        block(notification);
    }
}

}  // namespace tb
