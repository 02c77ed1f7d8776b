#include "tunebrook-service/auth/NonceCache.h"

namespace tb::service {

bool NonceCache::remember(const std::string& key, int64_t timestamp, int64_t now) {
    std::lock_guard lock(mutex_);
    purge(now);
    if (!seen_.insert(key).second) {
        return false;
    }
    byTimestamp_.emplace(timestamp, key);
    // A flood can't grow the set without bound: the oldest entries go first.
    while (seen_.size() > capacity_ && !byTimestamp_.empty()) {
        seen_.erase(byTimestamp_.begin()->second);
        byTimestamp_.erase(byTimestamp_.begin());
    }
    return true;
}

size_t NonceCache::size() const {
    std::lock_guard lock(mutex_);
    return seen_.size();
}

void NonceCache::purge(int64_t now) {
    while (!byTimestamp_.empty() && byTimestamp_.begin()->first < now - window_) {
        seen_.erase(byTimestamp_.begin()->second);
        byTimestamp_.erase(byTimestamp_.begin());
    }
}

}  // namespace tb::service
