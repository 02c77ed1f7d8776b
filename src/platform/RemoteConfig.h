#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Error.h"
#include "platform/RemoteConfigValue.h"

namespace tb {

// How a fetch of the remote store ended. Only Success (1) brought values.
enum class RemoteConfigFetchStatus : int {
    NoFetchYet = 0,
    Success = 1,
    Failure = 2,
    Throttled = 3,
};

// The in-app defaults, in the order the app registers them.
using RemoteConfigDefaults = std::vector<std::pair<std::string, RemoteConfigValue>>;

// The remotely managed key/value store that steers the app's small policies. A key reads as
// its activated value when the config service sent one, else as its registered default,
// else as no value. Fetched values wait until they are activated; activated values stay in
// force across launches.
//
// Handlers may run on any thread: they must touch nothing but what they settle.
class RemoteConfig {
  public:
    using FetchHandler =
        std::function<void(RemoteConfigFetchStatus status, std::optional<Error> error)>;
    using ActivateHandler = std::function<void(std::optional<Error> error)>;

    virtual ~RemoteConfig() = default;

    // Replaces the registered defaults; in force until a fetched value is activated.
    virtual void setDefaults(RemoteConfigDefaults defaults) = 0;

    // Fetches the current set. With `expirationSeconds` 0 it always asks the config service;
    // otherwise a set fetched within that many seconds answers instead. A failure gives a
    // status other than Success and, when the transfer or the answer was at fault, an error.
    virtual void fetch(double expirationSeconds, FetchHandler handler) = 0;

    // Puts the last fetched set in force for all later reads (and later launches).
    virtual void activate(ActivateHandler handler) = 0;

    virtual RemoteConfigValue configValueForKey(const std::string& key) const = 0;
};

}  // namespace tb
