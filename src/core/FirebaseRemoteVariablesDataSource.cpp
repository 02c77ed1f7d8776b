#include "core/FirebaseRemoteVariablesDataSource.h"

#include "core/RemoteVariableKeys.h"
#include "core/TBLogger.h"

namespace tb {

namespace {

// Editorial search terms for the search tab's placeholder, until the service names others.
constexpr const char* kDefaultSearchTrending = R"(["afrobeats","lofi","amapiano"])";

}  // namespace

FirebaseRemoteVariablesDataSource::FirebaseRemoteVariablesDataSource(RemoteConfig& store,
                                                                     MainQueue& queue,
                                                                     TBLogger& logger)
    : store_(store), queue_(queue), logger_(logger) {}

FirebaseRemoteVariablesDataSource::~FirebaseRemoteVariablesDataSource() {
    *alive_ = false;
}

RemoteConfigDefaults FirebaseRemoteVariablesDataSource::defaults() {
    namespace Keys = RemoteVariableKeys;
    using Value = RemoteConfigValue;
    return {
        {Keys::adInterstitialTiming, Value::integer(275)},
        {Keys::adBannerTiming, Value::integer(30)},
        {Keys::adBannerMinDuration, Value::integer(10)},
        {Keys::adInterstitialEnabledFirstLoad, Value::boolean(false)},
        {Keys::adPlayerEnabled, Value::boolean(true)},
        {Keys::adBannerEnabled, Value::boolean(true)},
        {Keys::adInterstitialEnabled, Value::boolean(true)},
        {Keys::deeplinkFirstLoad, Value::string("music_trending")},
        {Keys::tester, Value::boolean(false)},
        {Keys::checkDownloadEnabled, Value::boolean(true)},
        {Keys::checkSyncEnabled, Value::boolean(true)},
        {Keys::bookmarksEnabled, Value::boolean(true)},
        {Keys::bookmarksExpirationHours, Value::integer(120)},
        {Keys::checkPlaybackTimeout, Value::integer(10)},
        {Keys::searchTrending, Value::string(kDefaultSearchTrending)},
        {Keys::nowPlayingNativeAdPercentage, Value::integer(50)},
        {Keys::inAppRatingEnabled, Value::boolean(false)},
        {Keys::adInterstitialSoundOnAdEnabled, Value::boolean(false)},
        {Keys::adInterstitialSoundOnAdPeriod, Value::integer(86400)},
        {Keys::onboardingEnabled, Value::boolean(false)},
        {Keys::feedBigImagesByDefault, Value::boolean(false)},
    };
}

Promise<void> FirebaseRemoteVariablesDataSource::fetch() {
    store_.setDefaults(defaults());
    return Promise<void>(queue_, [this](const Resolver<void>& resolver) {
        store_.fetch(0.0, [this, alive = alive_, resolver](RemoteConfigFetchStatus status,
                                                           std::optional<Error> error) {
            if (error) {
                resolver.reject(std::move(*error));
                return;
            }
            if (!*alive) {
                resolver.fulfill();
                return;
            }
            const bool success = status == RemoteConfigFetchStatus::Success;
            logger_.log(std::string("FIRRemoteConfig completed: ") + (success ? "true" : "false"));
            if (!success) {
                resolver.fulfill();
                return;
            }
            store_.activate([resolver](std::optional<Error> activationError) {
                if (activationError) {
                    resolver.reject(std::move(*activationError));
                } else {
                    resolver.fulfill();
                }
            });
        });
    });
}

}  // namespace tb
