#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "core/TBLocalization.h"
#include "model/TBCategory.h"
#include "model/TBDisplayUtils.h"
#include "model/TBGenre.h"
#include "model/TBGenreEnumManager.h"
#include "model/TBPeriod.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(GenreTest, ServiceValuesRoundTripInCaseOrder) {
    std::set<std::string> values;
    for (const TBGenre genre : kAllGenres) {
        values.insert(rawValue(genre));
        EXPECT_EQ(genreFromRawValue(rawValue(genre)), genre);
        EXPECT_EQ(genreFromCaseIndex(caseIndex(genre)), genre);
    }
    EXPECT_EQ(values.size(), kAllGenres.size());
    EXPECT_EQ(rawValue(TBGenre::djMix), "dj-mix");
    EXPECT_EQ(caseIndex(TBGenre::djMix), 18);
    EXPECT_EQ(genreFromCaseIndex(2), TBGenre::dancehall);
    EXPECT_EQ(genreFromCaseIndex(20), std::nullopt);
    EXPECT_EQ(genreFromCaseIndex(-1), std::nullopt);
    EXPECT_EQ(genreFromRawValue("Dancehall"), std::nullopt);
    EXPECT_EQ(genreFromRawValue("dj_mix"), std::nullopt);
}

TEST(GenreTest, DisplayTextsAreFixedExceptAll) {
    EXPECT_EQ(TBGenreEnumManager::getGenreNameWithGenre(TBGenre::rnb), "R&B");
    EXPECT_EQ(TBGenreEnumManager::getGenreNameWithGenre(TBGenre::dancehall), "Reggae");
    EXPECT_EQ(TBGenreEnumManager::getGenreNameWithGenre(TBGenre::instrumental), "Instrumentals");
    EXPECT_EQ(TBGenreEnumManager::getGenreNameWithGenre(TBGenre::rap), "Hip-Hop / Rap");
    EXPECT_EQ(TBGenreEnumManager::getGenreNameWithGenre(TBGenre::djMix), "Dj-mix");
    EXPECT_TRUE(TBLocalization::hasText("browse_filter_allgenres"));
    EXPECT_EQ(TBGenreEnumManager::getGenreNameWithGenre(TBGenre::all),
              TBLocalization::localizedString("browse_filter_allgenres"));
}

TEST(GenreTest, DefaultGenreSendsAfrobeatsToAfropop) {
    EXPECT_EQ(defaultGenreValue(TBGenre::afrobeats), "afropop");
    EXPECT_EQ(defaultGenreValue(TBGenre::dancehall), "dancehall");
    for (const TBGenre genre : kAllGenres) {
        if (genre != TBGenre::afrobeats) {
            EXPECT_EQ(defaultGenreValue(genre), rawValue(genre)) << rawValue(genre);
        }
    }
}

TEST(PeriodTest, RawValuesAndDisplayKeys) {
    const std::vector<std::string> raw = {"daily", "weekly", "monthly", "yearly", "total"};
    const std::vector<std::string> keys = {
        "filters_section_timeframe_today", "filters_section_timeframe_week",
        "filters_section_timeframe_month", "filters_section_timeframe_year",
        "filters_section_timeframe_alltime"};
    for (size_t i = 0; i < kAllPeriods.size(); ++i) {
        EXPECT_EQ(rawValue(kAllPeriods[i]), raw[i]);
        EXPECT_EQ(periodFromRawValue(raw[i]), kAllPeriods[i]);
        EXPECT_EQ(displayKey(kAllPeriods[i]), keys[i]);
        EXPECT_TRUE(TBLocalization::hasText(keys[i])) << keys[i];
        EXPECT_EQ(displayText(kAllPeriods[i]), TBLocalization::localizedString(keys[i]));
    }
    EXPECT_EQ(periodFromRawValue("alltime"), std::nullopt);
}

TEST(CategoryTest, CategoriesAndFilterKeys) {
    EXPECT_EQ(rawValue(TBCategory::playlist), "playlist");
    EXPECT_EQ(categoryFromRawValue("album"), TBCategory::album);
    EXPECT_EQ(categoryFromRawValue("albums"), std::nullopt);

    EXPECT_EQ(displayKey(category::OfflineSorting::newest), "offline_sort_newest");
    EXPECT_EQ(displayKey(category::OfflineSorting::oldest), "offline_sort_oldest");
    EXPECT_EQ(displayKey(category::OfflineSorting::alphabetical), "offline_sort_alphabetically");
    EXPECT_EQ(displayKey(category::Playlist::mine), "playlists_filter_my");
    EXPECT_EQ(displayKey(category::Playlist::favorited), "playlists_filter_favorited");
    EXPECT_EQ(displayKey(category::Playlist::offline), "playlists_filter_offline");
    EXPECT_EQ(displayText(category::Playlist::mine),
              TBLocalization::localizedString("playlists_filter_my"));
}

TEST(CategoryTest, EveryFilterKeyHasAnEnglishText) {
    const std::vector<std::string> keys = {
        displayKey(category::OfflineSorting::newest),
        displayKey(category::OfflineSorting::oldest),
        displayKey(category::OfflineSorting::alphabetical),
        displayKey(category::Playlist::mine),
        displayKey(category::Playlist::favorited),
        displayKey(category::Playlist::offline),
        filterLabelKeys::kOfflineAllMusic,
        filterLabelKeys::kOfflineSongs,
        filterLabelKeys::kOfflineAlbums,
        filterLabelKeys::kOfflinePlaylists,
        filterLabelKeys::kOfflineNotOnDevice,
        filterLabelKeys::kFavoritesAllMusic,
        filterLabelKeys::kFavoritesSongs,
        filterLabelKeys::kFavoritesAlbums,
        filterLabelKeys::kFavoritesPlaylists,
    };
    for (const auto& key : keys) {
        EXPECT_TRUE(TBLocalization::hasText(key)) << key;
    }
}

TEST(DisplayUtilsTest, RoundNumberRoundsToTheNearestStep) {
    EXPECT_DOUBLE_EQ(TBDisplayUtils::roundNumber(80, 50), 100);
    EXPECT_DOUBLE_EQ(TBDisplayUtils::roundNumber(74, 50), 50);
    EXPECT_DOUBLE_EQ(TBDisplayUtils::roundNumber(75, 50), 100);
    EXPECT_DOUBLE_EQ(TBDisplayUtils::roundNumber(1080, 150), 1050);
    EXPECT_DOUBLE_EQ(TBDisplayUtils::roundNumber(1920, 150), 1950);
    EXPECT_DOUBLE_EQ(TBDisplayUtils::roundNumber(123.4, 0.5), 123.4);  // step below 1
    EXPECT_DOUBLE_EQ(TBDisplayUtils::roundNumber(123.4, 0), 123.4);
}

TEST(DisplayUtilsTest, SizesFollowTheScreen) {
    // The desktop defaults.
    EXPECT_EQ(TBDisplayUtils::musicSmallImageSize(), 100);
    EXPECT_EQ(TBDisplayUtils::musicOriginalImageSize(), 1950);

    TBDisplayUtils::init(3.0, 1242.0);
    EXPECT_EQ(TBDisplayUtils::musicSmallImageSize(), 250);      // 240 to the step of 50
    EXPECT_EQ(TBDisplayUtils::musicOriginalImageSize(), 1200);  // 1242 to the step of 150

    TBDisplayUtils::init(std::nan(""), -5);
    EXPECT_EQ(TBDisplayUtils::musicSmallImageSize(), 0);
    EXPECT_EQ(TBDisplayUtils::musicOriginalImageSize(), 0);
    TBDisplayUtils::init(1.0, 1920.0);
}

}  // namespace
}  // namespace tb
