#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tb {

// The typed remote values, for a consumer that holds them behind this interface. Every
// read goes to the store anew: nothing is kept between two calls.
class RemoteVariablesProvider {
  public:
    virtual ~RemoteVariablesProvider() = default;

    virtual std::int64_t bannerTiming() const = 0;
    virtual std::int64_t bannerTimingMinDuration() const = 0;
    virtual bool playerAdEnabled() const = 0;
    virtual bool bannerAdEnabled() const = 0;
    virtual std::int64_t playerNativeAdsPercentage() const = 0;
    virtual std::int64_t playbackCheckTimeout() const = 0;
    virtual std::int64_t interstitialTiming() const = 0;
    virtual std::int64_t soundOnInterstitialPeriod() const = 0;
    virtual std::int64_t bookmarksExpirationHours() const = 0;
    virtual std::vector<std::string> searchTrending() const = 0;

    // Any other boolean key (RemoteVariableKeys), read where it is used.
    virtual bool boolValue(const std::string& key) const = 0;
    // A string key, such as deeplink_firstload.
    virtual std::string stringValue(const std::string& key) const = 0;
};

}  // namespace tb
