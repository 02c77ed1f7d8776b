#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/RemoteConfig.h"

namespace tb {

// What a remote store holds, apart from where it comes from and where it is kept: the
// defaults, the last fetched set (not in force) and the activated set (in force).
class RemoteConfigState {
  public:
    using Values = std::map<std::string, RemoteConfigValue>;

    void setDefaults(const RemoteConfigDefaults& defaults);
    void setFetched(Values values) { fetched_ = std::move(values); }
    void setActivated(Values values) { activated_ = std::move(values); }

    // Moves the fetched set in force. False when nothing was fetched since the last
    // activation.
    bool activateFetched();

    const Values& activated() const { return activated_; }

    // The activated value, else the default, else no value.
    RemoteConfigValue valueForKey(const std::string& key) const;

  private:
    Values defaults_;
    std::optional<Values> fetched_;
    Values activated_;
};

}  // namespace tb
