#include "platform/MemoryKeychainStore.h"

namespace tb {

std::optional<std::string> MemoryKeychainStore::dataForKey(const std::string& key) {
    const auto found = entries_.find(key);
    if (found == entries_.end()) {
        return std::nullopt;
    }
    return found->second;
}

bool MemoryKeychainStore::setData(const std::string& key, const std::string& data) {
    if (failsWrites_) {
        return false;
    }
    entries_[key] = data;
    return true;
}

bool MemoryKeychainStore::removeObjectForKey(const std::string& key) {
    if (failsWrites_) {
        return entries_.find(key) == entries_.end();
    }
    entries_.erase(key);
    return true;
}

std::vector<std::string> MemoryKeychainStore::allKeys() {
    std::vector<std::string> keys;
    for (const auto& entry : entries_) {
        keys.push_back(entry.first);
    }
    return keys;
}

}  // namespace tb
