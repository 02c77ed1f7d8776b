#pragma once

#include <map>
#include <string>

#include "platform/KeychainStore.h"

namespace tb {

// A keychain held in memory: the test double. Writes can be made to fail, as a locked
// keychain would.
class MemoryKeychainStore final : public KeychainStore {
  public:
    std::optional<std::string> dataForKey(const std::string& key) override;
    bool setData(const std::string& key, const std::string& data) override;
    bool removeObjectForKey(const std::string& key) override;
    std::vector<std::string> allKeys() override;

    void setFailsWrites(bool fails) { failsWrites_ = fails; }

  private:
    std::map<std::string, std::string> entries_;
    bool failsWrites_ = false;
};

}  // namespace tb
