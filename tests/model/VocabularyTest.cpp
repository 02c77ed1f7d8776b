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

// The fixed genre names are a table; only "all" is looked up, and must have a text.
TEST(GenreTest, AllGenresIsTheLocalizedText) {
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

TEST(PeriodTest, RawValuesRoundTripAndEveryPeriodHasAText) {
    const std::vector<std::string> raw = {"daily", "weekly", "monthly", "yearly", "total"};
    for (size_t i = 0; i < kAllPeriods.size(); ++i) {
        EXPECT_EQ(rawValue(kAllPeriods[i]), raw[i]);
        EXPECT_EQ(periodFromRawValue(raw[i]), kAllPeriods[i]);
        EXPECT_TRUE(TBLocalization::hasText(displayKey(kAllPeriods[i]))) << raw[i];
        EXPECT_EQ(displayText(kAllPeriods[i]),
                  TBLocalization::localizedString(displayKey(kAllPeriods[i])));
    }
    EXPECT_EQ(periodFromRawValue("alltime"), std::nullopt);
}

// The filter keys themselves are a table; what counts is that each has an English text.
TEST(CategoryTest, CategoriesRoundTripAndEveryFilterKeyHasAnEnglishText) {
    EXPECT_EQ(rawValue(TBCategory::playlist), "playlist");
    EXPECT_EQ(categoryFromRawValue("album"), TBCategory::album);
    EXPECT_EQ(categoryFromRawValue("albums"), std::nullopt);
    EXPECT_EQ(displayText(category::Playlist::mine),
              TBLocalization::localizedString(displayKey(category::Playlist::mine)));
    for (const std::string& key : {
             displayKey(category::OfflineSorting::newest),
             displayKey(category::OfflineSorting::oldest),
             displayKey(category::OfflineSorting::alphabetical),
             displayKey(category::Playlist::mine),
             displayKey(category::Playlist::favorited),
             displayKey(category::Playlist::offline),
             std::string(filterLabelKeys::kOfflineAllMusic),
             std::string(filterLabelKeys::kOfflineSongs),
             std::string(filterLabelKeys::kOfflineAlbums),
             std::string(filterLabelKeys::kOfflinePlaylists),
             std::string(filterLabelKeys::kOfflineNotOnDevice),
             std::string(filterLabelKeys::kFavoritesAllMusic),
             std::string(filterLabelKeys::kFavoritesSongs),
             std::string(filterLabelKeys::kFavoritesAlbums),
             std::string(filterLabelKeys::kFavoritesPlaylists),
         }) {
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
