#pragma once

#include "platform/MixpanelExperiments.h"

namespace tb {

class ExternalSdks;
class MainQueue;

// Experiments where the analytics library has nothing to assign: each call is recorded with
// the outside libraries' record ("MixpanelTweaks.setTweaks" with each tweak's default,
// "Mixpanel.joinExperiments"), and the join is over at once.
class RecordedMixpanelExperiments final : public MixpanelExperiments {
  public:
    RecordedMixpanelExperiments(ExternalSdks& sdks, MainQueue& queue)
        : sdks_(sdks), queue_(queue) {}

    void setTweaks(const std::vector<BoolTweak>& tweaks) override;
    void joinExperiments(std::function<void()> callback) override;

  private:
    ExternalSdks& sdks_;
    MainQueue& queue_;
};

}  // namespace tb
