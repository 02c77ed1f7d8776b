#include "support/ScriptedRemoteConfig.h"

#include <stdexcept>

namespace tb::test {

void ScriptedRemoteConfig::setDefaults(RemoteConfigDefaults defaults) {
    state.setDefaults(defaults);
}

void ScriptedRemoteConfig::fetch(double expirationSeconds, FetchHandler handler) {
    pending.push_back({expirationSeconds, std::move(handler)});
}

void ScriptedRemoteConfig::activate(ActivateHandler handler) {
    ++activations;
    if (!activationError) {
        state.activateFetched();
    }
    handler(activationError);
}

RemoteConfigValue ScriptedRemoteConfig::configValueForKey(const std::string& key) const {
    return state.valueForKey(key);
}

void ScriptedRemoteConfig::answerFetch(RemoteConfigFetchStatus status,
                                       std::optional<Error> error,
                                       const std::map<std::string, std::string>& values) {
    if (pending.empty()) {
        throw std::logic_error("no fetch to answer");
    }
    const Fetch fetch = pending.front();
    pending.erase(pending.begin());
    if (status == RemoteConfigFetchStatus::Success) {
        RemoteConfigState::Values fetched;
        for (const auto& [key, text] : values) {
            fetched.emplace(key, RemoteConfigValue::fromJson(text).value());
        }
        state.setFetched(std::move(fetched));
    }
    fetch.handler(status, std::move(error));
}

}  // namespace tb::test
