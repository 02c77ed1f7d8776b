#include "platform/RecordedMixpanelExperiments.h"

#include <map>

#include "platform/ExternalSdks.h"
#include "platform/MainQueue.h"

namespace tb {

void RecordedMixpanelExperiments::setTweaks(const std::vector<BoolTweak>& tweaks) {
    std::map<std::string, std::string> settings;
    for (const auto& tweak : tweaks) {
        settings[tweak.name] = tweak.defaultValue ? "true" : "false";
    }
    sdks_.start("MixpanelTweaks.setTweaks", settings);
}

void RecordedMixpanelExperiments::joinExperiments(std::function<void()> callback) {
    sdks_.start("Mixpanel.joinExperiments", {});
    if (callback) {
        queue_.post(std::move(callback));
    }
}

}  // namespace tb
