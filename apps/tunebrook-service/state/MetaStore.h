#pragma once

#include <optional>
#include <string>

namespace tb::service {

class Database;

// Small named values of the service: its keys, the catalogue's seed and anchor time.
class MetaStore {
  public:
    explicit MetaStore(Database& db) : db_(db) {}
    std::optional<std::string> get(const std::string& key);
    bool set(const std::string& key, const std::string& value);

  private:
    Database& db_;
};

}  // namespace tb::service
