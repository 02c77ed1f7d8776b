#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tb {

// A boolean tweak of the analytics side's experiments: its name and the value it has for a
// listener in no experiment.
struct BoolTweak {
    std::string name;
    bool defaultValue = false;

    bool operator==(const BoolTweak&) const = default;
};

// The analytics library's experiment membership: tweaks are registered, then the listener
// joins the experiments that the analytics service assigns. The app never reads a tweak's
// value; it only takes part.
class MixpanelExperiments {
  public:
    virtual ~MixpanelExperiments() = default;

    virtual void setTweaks(const std::vector<BoolTweak>& tweaks) = 0;
    // `callback` runs once the join is over, on the main queue.
    virtual void joinExperiments(std::function<void()> callback) = 0;
};

}  // namespace tb
