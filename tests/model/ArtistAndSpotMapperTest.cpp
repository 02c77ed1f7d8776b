#include <cctype>
#include <string>
#include <unordered_set>
#include <vector>

#include <nlohmann/json.hpp>

#include "Fixtures.h"
#include "core/TBLocalization.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBFeaturedSpot.h"
#include "model/TBNotification.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

using test::fixture;

TEST(ArtistMapperTest, ReadsTheAccountAnswer) {
    const ArtistPtr artist = Artist::parseFrom(fixture("artist.json"));
    ASSERT_TRUE(artist);
    EXPECT_EQ(artist->artistId, "556");  // a numeric id reads as its text
    EXPECT_EQ(artist->banner, "https://img.tunebrook.test/u/556-banner.jpg");
    EXPECT_EQ(artist->youtube, std::nullopt);  // null
    ASSERT_TRUE(artist->created.has_value());
    EXPECT_DOUBLE_EQ(*artist->created, 1600000000.5);
    EXPECT_TRUE(artist->admin);  // "1" is true
    EXPECT_TRUE(artist->canComment);
}

TEST(ArtistMapperTest, VerifiedGivesTwoFlags) {
    nlohmann::json raw = fixture("artist.json").raw();
    const ArtistPtr tastemaker = Artist::parseFrom(JSON(raw));
    EXPECT_TRUE(tastemaker->tastemaker);
    EXPECT_FALSE(tastemaker->verified);

    raw["verified"] = "yes";
    const ArtistPtr verified = Artist::parseFrom(JSON(raw));
    EXPECT_TRUE(verified->verified);
    EXPECT_FALSE(verified->tastemaker);

    raw["verified"] = true;
    const ArtistPtr neither = Artist::parseFrom(JSON(raw));
    EXPECT_FALSE(neither->verified || neither->tastemaker);
}

TEST(ArtistMapperTest, CountsAreWholeNumbersFromTextReadFromTheirOwnKeys) {
    const ArtistPtr artist = Artist::parseFrom(fixture("artist.json"));
    ASSERT_TRUE(artist);
    EXPECT_EQ(artist->favoritesCount, 12);
    EXPECT_EQ(artist->feedCount, 3);
    EXPECT_EQ(artist->followersCount, 0);  // "1,200" is no whole number
    EXPECT_EQ(artist->followingCount, 40);
    EXPECT_EQ(artist->playlistsCount, 6);
    EXPECT_EQ(artist->reupsCount, 6);      // deliberately the playlists count
    EXPECT_EQ(artist->playsCount, 98765);  // "plays-ram", not "plays"
    EXPECT_EQ(artist->uploadsCount, 21);
    EXPECT_EQ(artist->pinnedCount, 3);
    EXPECT_FALSE(artist->followed);  // never taken from the answer
}

TEST(ArtistMapperTest, CreatedIsSecondsSince1970AsANumberOrADecimalText) {
    nlohmann::json raw = fixture("artist.json").raw();
    const auto createdOf = [&raw](nlohmann::json value) {
        raw["created"] = std::move(value);
        return Artist::parseFrom(JSON(raw))->created;
    };
    EXPECT_EQ(createdOf(1600000000), 1600000000.0);
    EXPECT_EQ(createdOf("1600000000.25"), 1600000000.25);
    EXPECT_EQ(createdOf("1600000000"), 1600000000.0);
    EXPECT_EQ(createdOf("-2.5e3"), -2500.0);
    EXPECT_EQ(createdOf("yesterday"), std::nullopt);
    EXPECT_EQ(createdOf("12abc"), std::nullopt);
    EXPECT_EQ(createdOf(nullptr), std::nullopt);
}

// Anything but a dictionary gives no account: HostileAnswerTest covers that for every mapper.
TEST(ArtistMapperTest, AnAccountWithoutAnIdIsStillRead) {
    nlohmann::json raw = fixture("artist.json").raw();
    raw.erase("id");
    const ArtistPtr withoutId = Artist::parseFrom(JSON(raw));
    ASSERT_TRUE(withoutId);
    EXPECT_EQ(withoutId->artistId, "");  // the string value of nothing
    EXPECT_EQ(withoutId->urlSlug, "ama-k");
    ASSERT_TRUE(Artist::parseFrom(JSON(nlohmann::json::object())));
    EXPECT_FALSE(Artist::parseFrom(JSON()));
}

TEST(ArtistMapperTest, ActorsAndSpotsWithoutAnIdKeepTheirAccount) {
    const auto actor = TBNotification::fromJSON(
        JSON::parse(R"({"verb": "follow", "actor": {"name": "Anon", "url_slug": "anon"}})"));
    ASSERT_TRUE(actor);
    ASSERT_TRUE(actor->actor);
    EXPECT_EQ(actor->actor->name, "Anon");

    const TBFeaturedSpot spot =
        TBFeaturedSpot::fromJSON(JSON::parse(R"({"type": "Rising", "ref": {"name": "No Id"}})"));
    ASSERT_TRUE(spot.artist);
    EXPECT_EQ(spot.artist->name, "No Id");
}

class FeaturedSpotTest : public ::testing::Test {
  protected:
    std::vector<TBFeaturedSpot> spots() const {
        std::vector<TBFeaturedSpot> result;
        for (const JSON& entry : fixture("featured.json")["results"].arrayValue()) {
            result.push_back(TBFeaturedSpot::fromJSON(entry));
        }
        return result;
    }
};

TEST_F(FeaturedSpotTest, TheRefTypePicksTheMapper) {
    const auto all = spots();
    ASSERT_EQ(all.size(), 8u);

    ASSERT_TRUE(all[0].item);
    EXPECT_EQ(all[0].item->itemType(), ItemType::song);
    EXPECT_FALSE(all[0].artist);
    EXPECT_EQ(all[0].type, "Premiere");

    ASSERT_TRUE(all[1].item);
    EXPECT_EQ(all[1].item->itemType(), ItemType::album);

    ASSERT_TRUE(all[2].item);
    EXPECT_EQ(all[2].item->itemType(), ItemType::playlist);

    ASSERT_TRUE(all[3].artist);
    EXPECT_EQ(all[3].artist->artistId, "a-9");
    EXPECT_FALSE(all[3].item);

    // A ref without a type is read as an artist.
    ASSERT_TRUE(all[4].artist);
    EXPECT_EQ(all[4].artist->name, "No Type");
}

TEST_F(FeaturedSpotTest, RestrictedBrokenAndMissingRefsLeaveASpotWithNothing) {
    const auto all = spots();
    for (size_t i : {5u, 6u, 7u}) {
        EXPECT_FALSE(all[i].item) << i;
        EXPECT_FALSE(all[i].artist) << i;
    }
}

TEST_F(FeaturedSpotTest, PrettyTypeNamesWhatTheSpotHolds) {
    const auto all = spots();
    const std::string song = TBLocalization::localizedString("song");
    const std::string album = TBLocalization::localizedString("album");
    const auto upper = [](std::string text) {
        for (char& c : text) {
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        return text;
    };
    EXPECT_EQ(all[0].prettyType(), upper("Premiere " + song));
    EXPECT_EQ(all[1].prettyType(), upper("New " + album));
    EXPECT_EQ(all[2].prettyType(), "Staff Picks");  // a playlist shows the label as it is
    EXPECT_EQ(all[3].prettyType(), TBLocalization::localizedString("artist"));
    for (const char* key : {"song", "album", "artist"}) {
        EXPECT_TRUE(TBLocalization::hasText(key)) << key;
    }
}

TEST_F(FeaturedSpotTest, EqualityAndHashFollowLabelAndIds) {
    const auto first = spots();
    const auto second = spots();
    for (size_t i = 0; i < first.size(); ++i) {
        EXPECT_TRUE(first[i].isEqual(second[i])) << i;
        EXPECT_EQ(first[i].hash(), second[i].hash()) << i;
    }
    EXPECT_FALSE(first[0] == first[1]);

    TBFeaturedSpot relabelled = first[0];
    relabelled.type = "Other";
    EXPECT_FALSE(relabelled == first[0]);

    TBFeaturedSpot otherSong = first[0];
    otherSong.item = std::make_shared<Item>(*first[0].item);
    EXPECT_TRUE(otherSong == first[0]);  // a copy of the same music is the same spot
    otherSong.item->itemID = "f-other";
    EXPECT_FALSE(otherSong == first[0]);

    std::unordered_set<TBFeaturedSpot> unique(first.begin(), first.end());
    unique.insert(second.begin(), second.end());
    // The three empty spots differ only by label; every spot is there once.
    EXPECT_EQ(unique.size(), first.size());
}

}  // namespace
}  // namespace tb
