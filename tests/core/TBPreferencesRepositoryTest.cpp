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

// Each switch reads its default until something is stored, is written as the text "1" or "0",
// and reads true only from that text "1" (or a number 1, or a boolean written by other code).
TEST_F(TBPreferencesRepositoryTest, SwitchesKeepTheirDefaultsAndReadOnlyTheTextOneAsTrue) {
    using Repo = TBPreferencesRepository;
    struct Switch {
        const char* key;
        bool (Repo::*read)() const;
        void (Repo::*write)(bool);
        bool fallback;
    };
    const Switch switches[] = {
        {"liveEnvironment", &Repo::liveEnvironment, &Repo::setLiveEnvironment, true},
        {"enableAds", &Repo::enableAds, &Repo::setEnableAds, true},
        {"trackAds", &Repo::trackAds, &Repo::setTrackAds, false},
        {"excludeReups", &Repo::excludeReups, &Repo::setExcludeReups, false},
        {"largeMusicCellType", &Repo::largeMusicCellType, &Repo::setLargeMusicCellType, false},
        {"ud_eq_enabled", &Repo::eqEnabled, &Repo::setEqEnabled, false},
        {"ud_cast_inited", &Repo::castSDKInitialized, &Repo::setCastSDKInitialized, false},
        {"highligths_hint_shown", &Repo::highlightsHintShown, &Repo::setHighlightsHintShown, false},
    };
    for (const auto& s : switches) {
        SCOPED_TRACE(s.key);
        EXPECT_EQ((preferences.*s.read)(), s.fallback);
        const int synchronizedBefore = standard().synchronizeCount();
        (preferences.*s.write)(!s.fallback);
        EXPECT_EQ(standard().objectForKey(s.key), DefaultsValue(s.fallback ? "0" : "1"));
        EXPECT_EQ((preferences.*s.read)(), !s.fallback);
        EXPECT_GT(standard().synchronizeCount(), synchronizedBefore);
        standard().setString(s.key, "yes");
        EXPECT_FALSE((preferences.*s.read)());
        standard().setInteger(s.key, 1);
        EXPECT_TRUE((preferences.*s.read)());
        standard().setBool(s.key, true);
        EXPECT_TRUE((preferences.*s.read)());
        standard().setBool(s.key, false);
        EXPECT_FALSE((preferences.*s.read)());
    }
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
    using Repo = TBPreferencesRepository;
    struct Tooltip {
        const char* key;
        bool (Repo::*shouldShow)() const;
        void (Repo::*setShown)();
    };
    const Tooltip tooltips[] = {
        {"miniplayerTooltipShownCount", &Repo::shouldShowMiniplayerTooltip,
         &Repo::setMiniplayerTooltipShown},
        {"suggestedFollowsShownCount", &Repo::shouldShowSuggestedFollowsTooltip,
         &Repo::setSuggestedFollowsTooltipShown},
        {"playerPlaylistTooltipShownCount", &Repo::shouldShowPlayerPlaylistTooltip,
         &Repo::setPlayerPlaylistTooltipShown},
        {"playerQueueTooltipShownCount", &Repo::shouldShowPlayerQueueTooltip,
         &Repo::setPlayerQueueTooltipShown},
        {"playerScrollDownTooltip", &Repo::shouldShowPlayerScrollDownTooltip,
         &Repo::setPlayerScrollDownTooltipShown},
        {"playerEQTooltip", &Repo::shouldShowPlayerEQTooltip, &Repo::setPlayerEQTooltipShown},
        {"playlistShuffleTooltipShownCount", &Repo::shouldShowPlaylistShuffleTooltip,
         &Repo::setPlaylistShuffleTooltipShown},
        {"playlistDownloadTooltipShownCount", &Repo::shouldShowPlaylistDownloadTooltip,
         &Repo::setPlaylistDownloadTooltipShown},
        {"albumFavoriteTooltipShownCount", &Repo::shouldShowAlbumFavoriteTooltip,
         &Repo::setAlbumFavoriteTooltipShown},
        {"queueAddToPlaylistTooltipShownCount", &Repo::shouldShowQueueAddToPlaylistTooltip,
         &Repo::setQueueAddToPlaylistTooltipShown},
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
