#include "ads/InterstitialsManager.h"

#include "core/TBConstants.h"
#include "platform/Clock.h"
#include "platform/SharedInstance.h"
#include "platform/UserDefaults.h"

namespace tb {

namespace {
const char* timestampKey() {
    return TBConstants::TBUserDefaultKeys().interstitialAdTimestamp;
}
}  // namespace

InterstitialsManager::InterstitialsManager(UserDefaults& defaults, const Clock& clock)
    : defaults_(defaults), clock_(clock) {}

InterstitialsManager& InterstitialsManager::shared() {
    return SharedInstance<InterstitialsManager>::get();
}

bool InterstitialsManager::isFreshInstall() const {
    return !defaults_.objectForKey(timestampKey()).has_value();
}

void InterstitialsManager::setInterstitialAdNotShown() {
    defaults_.setDouble(timestampKey(), 0.0);
    defaults_.synchronize();
}

void InterstitialsManager::setInterstitialAdShown() {
    defaults_.setDouble(timestampKey(), clock_.now());
    defaults_.synchronize();
}

}  // namespace tb
