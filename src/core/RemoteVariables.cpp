#include "core/RemoteVariables.h"

#include <nlohmann/json.hpp>

#include "core/RemoteVariableKeys.h"
#include "platform/JsonLimits.h"
#include "platform/RemoteConfig.h"
#include "platform/SharedInstance.h"

namespace tb {

namespace Keys = RemoteVariableKeys;

RemoteVariables::RemoteVariables(RemoteConfig& store,
                                 MixpanelExperiments& experiments,
                                 MainQueue& queue,
                                 TBLogger& logger)
    : store_(store),
      queue_(queue),
      firebase_(store, queue, logger),
      mixpanel_(experiments, queue) {}

RemoteVariables& RemoteVariables::current() {
    return SharedInstance<RemoteVariables>::get();
}

Promise<void> RemoteVariables::fetch() {
    // The list is built in order, so Firebase's fetch starts first.
    return whenResolved<void>(queue_, {firebase_.fetch(), mixpanel_.fetch()}).asVoid();
}

Promise<void> RemoteVariables::fetchAtLaunch(bool freshInstall, double waitSeconds) {
    Promise<void> fetched = fetch();
    if (!freshInstall) {
        return Promise<void>::fulfilled(queue_);
    }
    return race<void>({fetched, after(queue_, waitSeconds)});
}

std::int64_t RemoteVariables::integerValue(const std::string& key) const {
    const auto number = store_.configValueForKey(key).numberValue();
    return number ? number->integerValue : 0;
}

bool RemoteVariables::boolValue(const std::string& key) const {
    return store_.configValueForKey(key).boolValue();
}

std::string RemoteVariables::stringValue(const std::string& key) const {
    return store_.configValueForKey(key).stringValue();
}

std::vector<std::string> RemoteVariables::searchTrending() const {
    const std::string text = stringValue(Keys::searchTrending);
    if (!jsonNestingWithin(text)) {
        return {};
    }
    // Text that isn't UTF-8 fails to parse like any other broken text.
    const auto parsed = nlohmann::json::parse(text, nullptr, false);
    if (!parsed.is_array()) {
        return {};
    }
    std::vector<std::string> terms;
    for (const auto& term : parsed) {
        if (!term.is_string()) {
            return {};
        }
        terms.push_back(term.get<std::string>());
    }
    return terms;
}

std::int64_t RemoteVariables::bannerTiming() const {
    return integerValue(Keys::adBannerTiming);
}

std::int64_t RemoteVariables::bannerTimingMinDuration() const {
    return integerValue(Keys::adBannerMinDuration);
}

bool RemoteVariables::playerAdEnabled() const {
    return boolValue(Keys::adPlayerEnabled);
}

bool RemoteVariables::bannerAdEnabled() const {
    return boolValue(Keys::adBannerEnabled);
}

std::int64_t RemoteVariables::playerNativeAdsPercentage() const {
    return integerValue(Keys::nowPlayingNativeAdPercentage);
}

std::int64_t RemoteVariables::playbackCheckTimeout() const {
    return integerValue(Keys::checkPlaybackTimeout);
}

std::int64_t RemoteVariables::interstitialTiming() const {
    return integerValue(Keys::adInterstitialTiming);
}

std::int64_t RemoteVariables::soundOnInterstitialPeriod() const {
    return integerValue(Keys::adInterstitialSoundOnAdPeriod);
}

std::int64_t RemoteVariables::bookmarksExpirationHours() const {
    return integerValue(Keys::bookmarksExpirationHours);
}

}  // namespace tb
