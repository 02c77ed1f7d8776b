#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tb {

// The raw secure store: bytes by key, within one store identity (such as
// "com.tunebrook.iphone.valet"). Entries outlive reinstalls of the app. Typed values and the
// migration from the older store are built on top of it (TBKeychainManager).
class KeychainStore {
  public:
    virtual ~KeychainStore() = default;

    // The stored bytes, or nothing when the key is absent or the store can't be read.
    virtual std::optional<std::string> dataForKey(const std::string& key) = 0;

    // Stores the bytes; false when the store refused the write.
    virtual bool setData(const std::string& key, const std::string& data) = 0;

    // Removes the key; true when it is absent afterwards.
    virtual bool removeObjectForKey(const std::string& key) = 0;

    virtual std::vector<std::string> allKeys() = 0;
};

}  // namespace tb
