#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/RemoteConfig.h"
#include "platform/RemoteConfigState.h"

namespace tb::test {

// A remote store whose fetches wait until the test answers them. Activation is immediate and
// fails with `activationError` when one is set.
class ScriptedRemoteConfig final : public RemoteConfig {
  public:
    struct Fetch {
        double expirationSeconds = 0;
        FetchHandler handler;
    };

    void setDefaults(RemoteConfigDefaults defaults) override;
    void fetch(double expirationSeconds, FetchHandler handler) override;
    void activate(ActivateHandler handler) override;
    RemoteConfigValue configValueForKey(const std::string& key) const override;

    // Answers the oldest fetch not yet answered; with Success, `values` become the fetched
    // set (each a JSON text).
    void answerFetch(RemoteConfigFetchStatus status,
                     std::optional<Error> error = std::nullopt,
                     const std::map<std::string, std::string>& values = {});

    std::vector<Fetch> pending;
    std::optional<Error> activationError;
    int activations = 0;
    RemoteConfigState state;
};

}  // namespace tb::test
