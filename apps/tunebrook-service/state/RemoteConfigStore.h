#pragma once

#include <nlohmann/json_fwd.hpp>

namespace tb::service {

class MetaStore;

// The remote values the config endpoint serves: one JSON object of keys and values of any
// JSON type, kept in the database as it was set, so it survives restarts. Empty until set.
class RemoteConfigStore {
  public:
    explicit RemoteConfigStore(MetaStore& meta) : meta_(meta) {}

    nlohmann::json values();
    // Replaces the whole set; `values` must be an object.
    bool replace(const nlohmann::json& values);

  private:
    MetaStore& meta_;
};

}  // namespace tb::service
