#pragma once

#include <map>
#include <string>

#include "core/RemoteVariablesDataSource.h"
#include "platform/MixpanelExperiments.h"

namespace tb {

class MainQueue;

// The experiment registration of the analytics side: it registers its one tweak and joins
// the experiments. No value of it is ever read; the Firebase source decides every key,
// onboarding_enabled included. There is no time-out of its own: the join ends it.
class MixpanelRemoteVariablesDataSource final : public RemoteVariablesDataSource {
  public:
    MixpanelRemoteVariablesDataSource(MixpanelExperiments& experiments, MainQueue& queue);

    // Key -> tweak; exactly one: onboarding_enabled, default false.
    const std::map<std::string, BoolTweak>& boolTweaks() const { return boolTweaks_; }

    Promise<void> fetch() override;

  private:
    MixpanelExperiments& experiments_;
    MainQueue& queue_;
    const std::map<std::string, BoolTweak> boolTweaks_;
};

}  // namespace tb
