#include "tunebrook-service/state/RemoteConfigStore.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/state/MetaStore.h"

namespace tb::service {

namespace {
constexpr const char* kKey = "remote_config";
}  // namespace

nlohmann::json RemoteConfigStore::values() {
    const auto stored = meta_.get(kKey);
    auto values = stored ? nlohmann::json::parse(*stored, nullptr, false) : nlohmann::json();
    return values.is_object() ? values : nlohmann::json::object();
}

bool RemoteConfigStore::replace(const nlohmann::json& values) {
    return values.is_object() && meta_.set(kKey, values.dump());
}

}  // namespace tb::service
