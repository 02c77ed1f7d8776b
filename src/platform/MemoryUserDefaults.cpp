#include "platform/MemoryUserDefaults.h"

namespace tb {

std::optional<DefaultsValue> MemoryUserDefaults::objectForKey(const std::string& key) const {
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return found->second;
}

void MemoryUserDefaults::setObject(const std::string& key, DefaultsValue value) {
    values_[key] = std::move(value);
}

void MemoryUserDefaults::removeObjectForKey(const std::string& key) {
    values_.erase(key);
}

std::vector<std::string> MemoryUserDefaults::allKeys() const {
    std::vector<std::string> keys;
    keys.reserve(values_.size());
    for (const auto& entry : values_) {
        keys.push_back(entry.first);
    }
    return keys;
}

bool MemoryUserDefaults::synchronize() {
    ++synchronizeCount_;
    return true;
}

MemoryUserDefaults& MemoryUserDefaultsProvider::suite(const std::string& name) {
    auto& slot = suites_[name];
    if (!slot) {
        slot = std::make_unique<MemoryUserDefaults>();
    }
    return *slot;
}

}  // namespace tb
