#include "core/MixpanelRemoteVariablesDataSource.h"

#include <vector>

#include "core/RemoteVariableKeys.h"

namespace tb {

MixpanelRemoteVariablesDataSource::MixpanelRemoteVariablesDataSource(
    MixpanelExperiments& experiments,
    MainQueue& queue)
    : experiments_(experiments),
      queue_(queue),
      boolTweaks_{{RemoteVariableKeys::onboardingEnabled,
                   BoolTweak{RemoteVariableKeys::onboardingEnabled, false}}} {}

Promise<void> MixpanelRemoteVariablesDataSource::fetch() {
    std::vector<BoolTweak> tweaks;
    for (const auto& [key, tweak] : boolTweaks_) {
        tweaks.push_back(tweak);
    }
    experiments_.setTweaks(tweaks);
    return Promise<void>(queue_, [this](const Resolver<void>& resolver) {
        experiments_.joinExperiments([resolver] { resolver.fulfill(); });
    });
}

}  // namespace tb
