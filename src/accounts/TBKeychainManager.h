#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tb {

class KeychainStore;

// Typed values in the keychain. Every entry of the current store is the JSON of a wrapper
// with one optional member, {"value": ...}, holding a string, an integer, a double or a
// boolean; the format is shared with every earlier version of the app and never changes.
//
// Values move one way out of the older store, whose entries are plain text: a string,
// integer or double missing from the current store is looked up there at its first read,
// written to the current store and removed from the older one; every write (or removal)
// also clears the key in the older store, so it never regains a value. Booleans were never
// kept in the older store. An entry that can't be decoded reads as absent. A write the
// keychain refuses is dropped: the next read gives the old value or none.
class TBKeychainManager {
  public:
    TBKeychainManager(KeychainStore& current, KeychainStore& older);

    std::optional<std::string> stringForKey(const std::string& key);
    void setWithString(const std::optional<std::string>& value, const std::string& key);

    std::optional<std::int64_t> intForKey(const std::string& key);
    void setWithInt(std::optional<std::int64_t> value, const std::string& key);

    std::optional<double> doubleForKey(const std::string& key);
    void setWithDouble(std::optional<double> value, const std::string& key);

    // False when absent.
    bool boolForKey(const std::string& key);
    void setWithBool(std::optional<bool> value, const std::string& key);

    void removeObjectForKey(const std::string& key);

  private:
    KeychainStore& current_;
    KeychainStore& older_;
};

}  // namespace tb
