#include "core/TBConstants.h"
#include "core/TBPreferencesRepository.h"
#include "platform/NotificationCenter.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TBPreferencesRepositoryTest : public ::testing::Test {
  protected:
    MemoryUserDefaults& standard() { return platform.defaults.standard(); }

    void observe(const std::string& name) {
        platform.context().notificationCenter().addObserver(
            name, nullptr, [this, name](const Notification&) { notifications.push_back(name); });
    }

    test::TestPlatform platform;
    TBPreferencesRepository preferences{platform.defaults, platform.context().notificationCenter()};
    std::vector<std::string> notifications;
};

TEST_F(TBPreferencesRepositoryTest, SwitchesReadTheirDefaultsWhenNothingIsStored) {
    EXPECT_TRUE(preferences.liveEnvironment());
    EXPECT_TRUE(preferences.enableAds());
    EXPECT_FALSE(preferences.trackAds());
    EXPECT_FALSE(preferences.excludeReups());
    EXPECT_FALSE(preferences.largeMusicCellType());
    EXPECT_FALSE(preferences.eqEnabled());
    EXPECT_FALSE(preferences.castSDKInitialized());
    EXPECT_FALSE(preferences.highlightsHintShown());
}

TEST_F(TBPreferencesRepositoryTest, SwitchesAreStoredAsTheTextsOneAndZero) {
    preferences.setEnableAds(false);
    preferences.setTrackAds(true);
    preferences.setCastSDKInitialized(true);

    EXPECT_EQ(standard().objectForKey("enableAds"), DefaultsValue("0"));
    EXPECT_EQ(standard().objectForKey("trackAds"), DefaultsValue("1"));
    EXPECT_EQ(standard().objectForKey("ud_cast_inited"), DefaultsValue("1"));
    EXPECT_FALSE(preferences.enableAds());
    EXPECT_TRUE(preferences.trackAds());
    EXPECT_GE(standard().synchronizeCount(), 3);
}

TEST_F(TBPreferencesRepositoryTest, OnlyTheTextOneReadsTrue) {
    standard().setString("liveEnvironment", "yes");
    standard().setString("largeMusicCellType", "1");
    standard().setInteger("excludeReups", 1);
    standard().setBool("highligths_hint_shown", false);
    standard().setBool("ud_eq_enabled", true);

    EXPECT_FALSE(preferences.liveEnvironment());
    EXPECT_TRUE(preferences.largeMusicCellType());
    EXPECT_TRUE(preferences.excludeReups());
    EXPECT_FALSE(preferences.highlightsHintShown());
    EXPECT_TRUE(preferences.eqEnabled());
}

TEST_F(TBPreferencesRepositoryTest, TheRetiredGenreIsRenamedForGoodAtItsFirstRead) {
    EXPECT_EQ(preferences.defaultGenre(), std::nullopt);
    standard().setString("default_genre", "afropop");
    const int synchronizedBefore = standard().synchronizeCount();

    EXPECT_EQ(preferences.defaultGenre(), "afrobeats");
    EXPECT_EQ(standard().stringForKey("default_genre"), "afrobeats");
    EXPECT_EQ(standard().synchronizeCount(), synchronizedBefore + 1);

    EXPECT_EQ(TBPreferencesRepository(platform.defaults, platform.context().notificationCenter())
                  .defaultGenre(),
              "afrobeats");
    EXPECT_EQ(standard().synchronizeCount(), synchronizedBefore + 1);

    preferences.setDefaultGenre("rap");
    EXPECT_EQ(preferences.defaultGenre(), "rap");
}

TEST_F(TBPreferencesRepositoryTest, EachTooltipShowsUntilItsSetterRunsAndStaysAtOne) {
    struct Tooltip {
        const char* key;
        bool (TBPreferencesRepository::*shouldShow)() const;
        void (TBPreferencesRepository::*setShown)();
    };
    const Tooltip tooltips[] = {
        {"miniplayerTooltipShownCount", &TBPreferencesRepository::shouldShowMiniplayerTooltip,
         &TBPreferencesRepository::setMiniplayerTooltipShown},
        {"suggestedFollowsShownCount", &TBPreferencesRepository::shouldShowSuggestedFollowsTooltip,
         &TBPreferencesRepository::setSuggestedFollowsTooltipShown},
        {"playerPlaylistTooltipShownCount",
         &TBPreferencesRepository::shouldShowPlayerPlaylistTooltip,
         &TBPreferencesRepository::setPlayerPlaylistTooltipShown},
        {"playerQueueTooltipShownCount", &TBPreferencesRepository::shouldShowPlayerQueueTooltip,
         &TBPreferencesRepository::setPlayerQueueTooltipShown},
        {"playerScrollDownTooltip", &TBPreferencesRepository::shouldShowPlayerScrollDownTooltip,
         &TBPreferencesRepository::setPlayerScrollDownTooltipShown},
        {"playerEQTooltip", &TBPreferencesRepository::shouldShowPlayerEQTooltip,
         &TBPreferencesRepository::setPlayerEQTooltipShown},
        {"playlistShuffleTooltipShownCount",
         &TBPreferencesRepository::shouldShowPlaylistShuffleTooltip,
         &TBPreferencesRepository::setPlaylistShuffleTooltipShown},
        {"playlistDownloadTooltipShownCount",
         &TBPreferencesRepository::shouldShowPlaylistDownloadTooltip,
         &TBPreferencesRepository::setPlaylistDownloadTooltipShown},
        {"albumFavoriteTooltipShownCount", &TBPreferencesRepository::shouldShowAlbumFavoriteTooltip,
         &TBPreferencesRepository::setAlbumFavoriteTooltipShown},
        {"queueAddToPlaylistTooltipShownCount",
         &TBPreferencesRepository::shouldShowQueueAddToPlaylistTooltip,
         &TBPreferencesRepository::setQueueAddToPlaylistTooltipShown},
    };
    for (const auto& tooltip : tooltips) {
        EXPECT_TRUE((preferences.*tooltip.shouldShow)()) << tooltip.key;
        const int synchronizedBefore = standard().synchronizeCount();
        (preferences.*tooltip.setShown)();
        (preferences.*tooltip.setShown)();
        EXPECT_EQ(standard().objectForKey(tooltip.key), DefaultsValue(1)) << tooltip.key;
        EXPECT_EQ(standard().synchronizeCount(), synchronizedBefore + 2) << tooltip.key;
        EXPECT_FALSE((preferences.*tooltip.shouldShow)()) << tooltip.key;
    }
    for (const auto& tooltip : tooltips) {
        EXPECT_FALSE((preferences.*tooltip.shouldShow)()) << tooltip.key << " shown by another";
    }
    standard().setInteger("playerEQTooltip", 0);
    EXPECT_TRUE(preferences.shouldShowPlayerEQTooltip());
}

TEST_F(TBPreferencesRepositoryTest, EqualizerWritesTellThePlayer) {
    observe(TBConstants::TBGlobalNotifications().eqEnablingChanged);
    observe(TBConstants::TBGlobalNotifications().eqValuesChanged);

    preferences.setEqEnabled(true);
    preferences.setEqValues({0.75, 0.7, 0.6});
    preferences.setEqPreset("acoustic");

    EXPECT_THAT(notifications, ElementsAre("eqEnablingChanged", "eqValuesChanged"));
    EXPECT_TRUE(preferences.eqEnabled());
    EXPECT_THAT(preferences.eqValues(), ElementsAre(0.75, 0.7, 0.6));
    EXPECT_EQ(preferences.eqPreset(), "acoustic");

    preferences.setEqPreset(std::nullopt);
    EXPECT_FALSE(standard().objectForKey("ud_eq_preset"));
}

TEST_F(TBPreferencesRepositoryTest, StoredGainsKeepTheirBands) {
    EXPECT_THAT(preferences.eqValues(), IsEmpty());
    standard().setArray("ud_eq_values", {DefaultsValue(0.8), DefaultsValue("x"), DefaultsValue(1)});
    EXPECT_THAT(preferences.eqValues(), ElementsAre(0.8, 0.5, 1.0));
}

TEST_F(TBPreferencesRepositoryTest, RecentSearchesAreSharedWithTheMessageExtension) {
    EXPECT_THAT(preferences.recentSearches(), IsEmpty());
    preferences.setRecentSearches({"burna", "wizkid"});

    EXPECT_THAT(preferences.recentSearches(), ElementsAre("burna", "wizkid"));
    auto& shared = platform.defaults.suite("group.com.tunebrook.iphone.imessageextension");
    EXPECT_EQ(shared.arrayForKey("recent_searches"),
              DefaultsValue::Array({DefaultsValue("burna"), DefaultsValue("wizkid")}));
    EXPECT_EQ(shared.synchronizeCount(), 1);
}

TEST_F(TBPreferencesRepositoryTest, OnboardingAndRatingValuesUseTheirKeys) {
    EXPECT_FALSE(preferences.onboardingDismissed());
    preferences.setOnboardingDismissed(true);
    EXPECT_EQ(standard().objectForKey("onboardingDismissed"), DefaultsValue(true));

    preferences.setOnboardingPlaylistGenreChoice("afrobeats");
    EXPECT_EQ(preferences.onboardingPlaylistGenreChoice(), "afrobeats");

    preferences.setInAppRatingDowloadedCount(6);
    standard().setInteger("inAppRatingFavoritedCount", 3);
    EXPECT_EQ(standard().integerForKey("inAppRatingDowloadedCount"), 6);
    EXPECT_EQ(preferences.inAppRatingFavoritedCount(), 3);
}

}  // namespace
}  // namespace tb
