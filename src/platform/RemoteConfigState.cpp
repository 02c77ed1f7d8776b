#include "platform/RemoteConfigState.h"

namespace tb {

void RemoteConfigState::setDefaults(const RemoteConfigDefaults& defaults) {
    defaults_.clear();
    for (const auto& [key, value] : defaults) {
        defaults_.insert_or_assign(key, value);
    }
}

bool RemoteConfigState::activateFetched() {
    if (!fetched_) {
        return false;
    }
    activated_ = std::move(*fetched_);
    fetched_.reset();
    return true;
}

RemoteConfigValue RemoteConfigState::valueForKey(const std::string& key) const {
    if (const auto found = activated_.find(key); found != activated_.end()) {
        return found->second;
    }
    if (const auto found = defaults_.find(key); found != defaults_.end()) {
        return found->second;
    }
    return {};
}

}  // namespace tb
