#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/UserDefaults.h"

namespace tb {

// User defaults held in memory only: the test double, and the store of a run that must
// leave nothing behind. synchronize() succeeds and counts its calls.
class MemoryUserDefaults final : public UserDefaults {
  public:
    std::optional<DefaultsValue> objectForKey(const std::string& key) const override;
    void setObject(const std::string& key, DefaultsValue value) override;
    void removeObjectForKey(const std::string& key) override;
    std::vector<std::string> allKeys() const override;
    bool synchronize() override;

    int synchronizeCount() const { return synchronizeCount_; }

  private:
    std::map<std::string, DefaultsValue> values_;
    int synchronizeCount_ = 0;
};

class MemoryUserDefaultsProvider final : public UserDefaultsProvider {
  public:
    MemoryUserDefaults& standard() override { return standard_; }
    MemoryUserDefaults& suite(const std::string& name) override;

  private:
    MemoryUserDefaults standard_;
    std::map<std::string, std::unique_ptr<MemoryUserDefaults>> suites_;
};

}  // namespace tb
