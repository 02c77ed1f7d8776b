#pragma once

#include "core/FirebaseRemoteVariablesDataSource.h"
#include "core/MixpanelRemoteVariablesDataSource.h"
#include "core/RemoteVariablesProvider.h"

namespace tb {

class MainQueue;
class MixpanelExperiments;
class RemoteConfig;
class TBLogger;

// The owner of the remote values: it registers the defaults, runs the fetches and answers
// the typed reads. The app builds one and installs it; RemoteVariables::current() is the
// system's shared accessor over it. Main queue only.
//
// Reading rules. A number key without a number in force (the service sent text, say)
// reads as 0, not as its default. search_trending is a JSON array of strings held as text;
// anything else there reads as an empty list. A key the service didn't send reads as its
// default.
class RemoteVariables final : public RemoteVariablesProvider {
  public:
    RemoteVariables(RemoteConfig& store,
                    MixpanelExperiments& experiments,
                    MainQueue& queue,
                    TBLogger& logger);

    static RemoteVariables& current();

    FirebaseRemoteVariablesDataSource& firebase() { return firebase_; }
    MixpanelRemoteVariablesDataSource& mixpanel() { return mixpanel_; }

    // Both sources, Firebase first, joined so that the result never fails: a failed source
    // leaves the defaults or the values of an earlier activation in force.
    Promise<void> fetch();

    // The launch's fetch. On a fresh install the launch goes on when the fetch is over or
    // `waitSeconds` have passed, whichever is first; a later end still activates its values.
    // Otherwise the fetch is started and the launch goes on at once, on the values an
    // earlier launch activated.
    Promise<void> fetchAtLaunch(bool freshInstall, double waitSeconds);

    std::int64_t bannerTiming() const override;
    std::int64_t bannerTimingMinDuration() const override;
    bool playerAdEnabled() const override;
    bool bannerAdEnabled() const override;
    std::int64_t playerNativeAdsPercentage() const override;
    std::int64_t playbackCheckTimeout() const override;
    std::int64_t interstitialTiming() const override;
    std::int64_t soundOnInterstitialPeriod() const override;
    std::int64_t bookmarksExpirationHours() const override;
    std::vector<std::string> searchTrending() const override;

    bool boolValue(const std::string& key) const override;
    std::string stringValue(const std::string& key) const override;
    // A number key by the reading rule above.
    std::int64_t integerValue(const std::string& key) const;

  private:
    RemoteConfig& store_;
    MainQueue& queue_;
    FirebaseRemoteVariablesDataSource firebase_;
    MixpanelRemoteVariablesDataSource mixpanel_;
};

}  // namespace tb
