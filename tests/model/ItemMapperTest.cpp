#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Fixtures.h"
#include "ScopedTimeZone.h"
#include "model/Item.h"
#include "model/TBDisplayUtils.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

using test::fixture;
using Samples = std::vector<std::int64_t>;

// The fixture with one key changed (or removed, for a null value).
JSON songWith(const std::string& key, nlohmann::json value) {
    nlohmann::json raw = fixture("song.json").raw();
    if (value.is_null()) {
        raw.erase(key);
    } else {
        raw[key] = std::move(value);
    }
    return JSON(std::move(raw));
}

// The same through the song mapper, without the drop flag.
ItemPtr mappedSongWith(const std::string& key, nlohmann::json value) {
    return Item::parseItemFrom(songWith(key, std::move(value)), false);
}

// A phone-sized screen, so that the widths asked for differ from the desktop defaults, in
// UTC unless a test says otherwise.
class ItemMapperTest : public ::testing::Test {
  protected:
    void SetUp() override { TBDisplayUtils::init(2.0, 750.0); }
    void TearDown() override { TBDisplayUtils::init(1.0, 1920.0); }

    test::ScopedTimeZone utc_{"UTC0"};
};

TEST_F(ItemMapperTest, SongReadsTheServiceAnswer) {
    const ItemPtr song = Item::parseItemFrom(fixture("song.json"), true);
    ASSERT_TRUE(song);

    EXPECT_FALSE(song->isManaged());     // mapped records belong to no context
    EXPECT_EQ(song->itemID, "4815162");  // a numeric id reads as its text
    EXPECT_EQ(song->itemType(), ItemType::song);
    EXPECT_TRUE(song->isSong);
    EXPECT_FALSE(song->isAlbum || song->isPlaylist);
    // Only the fields marked for cleaning are cleaned; display texts keep their quotes.
    EXPECT_EQ(song->url, "https://stream.tunebrook.test/music/4815162.mp3");
    EXPECT_EQ(song->image, "https://img.tunebrook.test/art/4815162.jpg");
    EXPECT_EQ(song->buyURL, "https://store.example/buy?id=4815162");
    EXPECT_EQ(song->title, "Harmattan \"Live\"");
    EXPECT_EQ(song->desc, "Recorded at the \"Shrine\".");
    // "stream_only" and "video_ad" are true only for "yes"; "amp" is a plain bool.
    EXPECT_TRUE(song->streamOnly);
    EXPECT_FALSE(song->videoAd);
    EXPECT_TRUE(song->amp);
    EXPECT_EQ(song->ampDuration, 30);
    EXPECT_EQ(song->duration, 245);
    EXPECT_EQ(song->repostTimestamp, 1795309200);
    EXPECT_EQ(song->uploaded, "November 22, 2026");
    EXPECT_EQ(song->uploaderFollowersCount, 12034);
    EXPECT_EQ(song->status, "active");
    EXPECT_FALSE(song->georestricted);
}

TEST_F(ItemMapperTest, SizedImagesComeFromTheImageBaseWithTheScreensWidths) {
    const ItemPtr song = Item::parseItemFrom(fixture("song.json"), false);
    ASSERT_TRUE(song);
    EXPECT_EQ(song->originalImage, "https://img.tunebrook.test/art/4815162-base.jpg?width=750");
    EXPECT_EQ(song->smallImage, "https://img.tunebrook.test/art/4815162-base.jpg?width=150");

    for (const nlohmann::json& noBase : {nlohmann::json(""), nlohmann::json()}) {
        const ItemPtr plain = mappedSongWith("image_base", noBase);
        ASSERT_TRUE(plain);
        EXPECT_EQ(plain->originalImage, plain->image);
        EXPECT_EQ(plain->smallImage, plain->image);
    }
}

TEST_F(ItemMapperTest, UploaderVerifiedAndTastemakerComeFromOneKey) {
    const ItemPtr verified = Item::parseItemFrom(fixture("song.json"), false);
    EXPECT_TRUE(verified->uploaderVerified);
    EXPECT_FALSE(verified->uploaderTastemaker);

    nlohmann::json raw = fixture("song.json").raw();
    raw["uploader"]["verified"] = "tastemaker";
    const ItemPtr tastemaker = Item::parseItemFrom(JSON(raw), false);
    EXPECT_TRUE(tastemaker->uploaderTastemaker);
    EXPECT_FALSE(tastemaker->uploaderVerified);

    for (const nlohmann::json& other :
         {nlohmann::json("Yes"), nlohmann::json(true), nlohmann::json("no")}) {
        raw["uploader"]["verified"] = other;
        const ItemPtr plain = Item::parseItemFrom(JSON(raw), false);
        EXPECT_FALSE(plain->uploaderVerified) << other.dump();
        EXPECT_FALSE(plain->uploaderTastemaker) << other.dump();
    }
}

TEST_F(ItemMapperTest, UploaderFollowersCountIsTextThenIntegerThenNil) {
    nlohmann::json raw = fixture("song.json").raw();
    const auto countFor = [&](nlohmann::json value) {
        raw["uploader"]["followers_count"] = std::move(value);
        return Item::parseItemFrom(JSON(raw), false)->uploaderFollowersCount;
    };
    EXPECT_EQ(countFor("77"), 77);
    EXPECT_EQ(countFor(77), 77);
    EXPECT_EQ(countFor(77.9), 77);  // the text "77.9" is no whole number; the integer is 77
    EXPECT_EQ(countFor("about 77"), std::nullopt);
    EXPECT_EQ(countFor(nullptr), std::nullopt);
}

TEST_F(ItemMapperTest, SongWithoutIdIsNilWhateverElseItHas) {
    for (const nlohmann::json& noId : {nlohmann::json(), nlohmann::json(""),
                                       nlohmann::json::array(), nlohmann::json::object()}) {
        nlohmann::json raw = fixture("song.json").raw();
        raw["id"] = noId;
        EXPECT_FALSE(Item::parseItemFrom(JSON(raw), false)) << noId.dump();
    }
    EXPECT_FALSE(mappedSongWith("id", nullptr));
}

TEST_F(ItemMapperTest, TheDropFlagDropsOnlyGeoRestrictedMusic) {
    for (const nlohmann::json& restricted :
         {nlohmann::json(true), nlohmann::json("yes"), nlohmann::json(1), nlohmann::json("TRUE")}) {
        const JSON json = songWith("geo_restricted", restricted);
        EXPECT_FALSE(Item::parseItemFrom(json, true)) << restricted.dump();
        const ItemPtr kept = Item::parseItemFrom(json, false);
        ASSERT_TRUE(kept) << restricted.dump();
        EXPECT_TRUE(kept->georestricted);
    }
    EXPECT_TRUE(Item::parseItemFrom(songWith("geo_restricted", "no"), true));
}

TEST_F(ItemMapperTest, StatisticsAreNumberDescriptionsOrTextAndRanksAreText) {
    const ItemPtr song = Item::parseItemFrom(fixture("song.json"), false);
    EXPECT_EQ(song->plays, "1234567");
    EXPECT_EQ(song->favorites, "45.5");
    EXPECT_EQ(song->reposts, "87");   // a text is taken as second choice
    EXPECT_EQ(song->playlists, "3");  // 3.0 is described without a fraction
    EXPECT_EQ(song->rankDaily, "4");
    EXPECT_EQ(song->rankWeekly, std::nullopt);   // 12 is a number, and ranks are text only
    EXPECT_EQ(song->rankMonthly, std::nullopt);  // null
    EXPECT_EQ(song->rankYearly, std::nullopt);   // absent
    EXPECT_EQ(song->rankAllTime, "1200");        // "total"

    const ItemPtr bare = mappedSongWith("stats", nullptr);
    EXPECT_EQ(bare->plays, std::nullopt);
    EXPECT_EQ(bare->rankAllTime, std::nullopt);
    const ItemPtr wrong = mappedSongWith("stats", {{"plays", {1, 2}}});
    EXPECT_EQ(wrong->plays, std::nullopt);
}

TEST_F(ItemMapperTest, VolumeDataKeepsThePartsThatAreNumbersFromText) {
    // Each part by the rule of numbers as text, as "duration" is read: no blanks around it,
    // no fraction; a sign is part of a number.
    EXPECT_EQ(Item::parseItemFrom(fixture("song.json"), false)->volumeData,
              (Samples{0, 12, 7, 99}));
    EXPECT_EQ(mappedSongWith("volume_data", "1, 2,x,3,,4.0,+5")->volumeData, (Samples{1, 3, 5}));
    EXPECT_EQ(mappedSongWith("volume_data", "-7,\"8\",9 ")->volumeData, (Samples{-7, 8}));
    EXPECT_EQ(mappedSongWith("volume_data", "5")->volumeData, Samples{5});
    EXPECT_EQ(mappedSongWith("volume_data", "a,b")->volumeData, Samples{});
    for (const nlohmann::json& none :
         {nlohmann::json(""), nlohmann::json("\"\""), nlohmann::json(), nlohmann::json({1, 2})}) {
        EXPECT_EQ(mappedSongWith("volume_data", none)->volumeData, std::nullopt) << none.dump();
    }
}

// The text rule itself is TBUtilTest's; here a number is read through its text.
TEST_F(ItemMapperTest, IntegersFromTextAcceptOnlyWholeNumbers) {
    const auto durationOf = [](nlohmann::json value) {
        return mappedSongWith("duration", std::move(value))->duration;
    };
    EXPECT_EQ(durationOf("245"), 245);
    EXPECT_EQ(durationOf(245), 245);
    EXPECT_EQ(durationOf("4:05"), 0);
    EXPECT_EQ(durationOf(245.5), 0);  // its text is "245.5"
    EXPECT_EQ(durationOf(true), 0);
}

TEST_F(ItemMapperTest, RepostNameFallsBackToTheRepostKeyOnlyWithoutAText) {
    EXPECT_EQ(Item::parseItemFrom(fixture("song.json"), false)->repostArtistName, "DJ Relay");
    EXPECT_EQ(mappedSongWith("repost_artist", {{"name", 5}})->repostArtistName, "Ignored Name");
    EXPECT_EQ(mappedSongWith("repost_artist", nullptr)->repostArtistName, "Ignored Name");
}

TEST_F(ItemMapperTest, ReleaseDatesAreLongEnglishDatesOfTheDevicesDay) {
    const auto uploadedOf = [](nlohmann::json value) {
        return mappedSongWith("released", std::move(value))->uploaded;
    };
    // The calendar is DateTextTest's; here, what the mapper takes for seconds since 1970: a
    // double, in text too.
    EXPECT_EQ(uploadedOf(0), "January 1, 1970");
    EXPECT_EQ(uploadedOf("1700000000"), "November 14, 2023");
    EXPECT_EQ(uploadedOf("1699919999.5"), "November 13, 2023");
    EXPECT_EQ(uploadedOf("+1.7e9"), "November 14, 2023");
    EXPECT_EQ(uploadedOf("-0.5"), "December 31, 1969");
    for (const char* notSeconds :
         {"soon", "1700000000 ", " 1700000000", "1e400", "inf", "nan", "+-1", "0x10", "", "."}) {
        EXPECT_EQ(uploadedOf(notSeconds), std::nullopt) << notSeconds;
    }
    EXPECT_EQ(uploadedOf(nullptr), std::nullopt);
    const test::ScopedTimeZone newYork("EST5EDT,M3.2.0,M11.1.0");
    EXPECT_EQ(uploadedOf(0), "December 31, 1969");  // the day of the device's zone
}

TEST_F(ItemMapperTest, AlbumTracksTakeTheirIdsAndPositionsAndSkipWhatHasNoId) {
    const ItemPtr album = Item::parseItemFrom(fixture("album.json"), true);
    ASSERT_TRUE(album);
    EXPECT_EQ(album->itemType(), ItemType::album);
    ASSERT_EQ(album->tracks.size(), 3u);

    // "song_id" wins over "id"; an empty "song_id" falls back to "id".
    EXPECT_EQ(album->tracksIDs, "s-1,77,s-4");
    EXPECT_TRUE(album->hasTracks);
    // The position in the answer's array, from 1, counting what was left out.
    EXPECT_EQ(album->tracks[0]->trackNumber, 1);
    EXPECT_EQ(album->tracks[1]->trackNumber, 2);
    EXPECT_EQ(album->tracks[2]->trackNumber, 5);
    for (const auto& track : album->tracks) {
        EXPECT_TRUE(track->isAlbumTrack);
        EXPECT_EQ(track->itemType(), ItemType::albumTrack);
        EXPECT_EQ(track->parentID, "al-900");
        EXPECT_EQ(track->album, "Tidal Maps");
    }
    // A restricted track stays in the album; only availableTracks leaves it out.
    EXPECT_TRUE(album->tracks[1]->georestricted);
    ASSERT_EQ(album->availableTracks().size(), 2u);
    EXPECT_EQ(album->availableTracks()[1]->itemID, "s-4");
}

TEST_F(ItemMapperTest, AlbumTracksInheritFromTheirAlbum) {
    const ItemPtr album = Item::parseItemFrom(fixture("album.json"), true);
    ASSERT_TRUE(album);
    const Item& first = *album->tracks[0];
    const Item& second = *album->tracks[1];

    // Empty genre and artist take the album's; present ones are kept.
    EXPECT_EQ(first.genre, "rnb");
    EXPECT_EQ(first.artist, "The Coastline");
    EXPECT_EQ(second.genre, "pop");
    EXPECT_EQ(second.artist, "Guest Singer");
    EXPECT_EQ(album->tracks[2]->genre, "rnb");  // absent

    // The pictures and the uploader are always the album's, even over the track's own.
    for (const auto& track : album->tracks) {
        EXPECT_EQ(track->image, "https://img.tunebrook.test/al/900.jpg");
        EXPECT_EQ(track->originalImage, album->originalImage);
        EXPECT_EQ(track->smallImage, album->smallImage);
        EXPECT_EQ(track->uploaderSlug, "coastline-records");
        EXPECT_EQ(track->uploaderName, "Coastline Records");
        EXPECT_EQ(track->uploaderId, "u-12");
        EXPECT_EQ(track->uploaderTwitter, "coastline");
        EXPECT_TRUE(track->uploaderTastemaker);
        EXPECT_FALSE(track->uploaderVerified);
    }
}

TEST_F(ItemMapperTest, AlbumTrackFieldsFollowTheSongRules) {
    const ItemPtr album = Item::parseItemFrom(fixture("album.json"), false);
    const Item& first = *album->tracks[0];
    EXPECT_EQ(first.url, "https://stream.tunebrook.test/s-1.mp3");
    EXPECT_EQ(first.buyURL, "https://store.example/s-1");
    EXPECT_EQ(first.duration, 201);
    EXPECT_TRUE(first.amp);  // "yes" is true for a bool
    EXPECT_EQ(first.ampDuration, 20);
    EXPECT_EQ(first.featured, "Mira");
    EXPECT_EQ(first.volumeData, (Samples{1, 2, 3}));
    EXPECT_EQ(album->tracks[1]->duration, 0);  // 180.5 is no whole number
    EXPECT_EQ(album->tracks[2]->volumeData, std::nullopt);

    // Without image_base the album's own image stands for both sizes.
    EXPECT_EQ(album->originalImage, album->image);
    EXPECT_EQ(album->uploaded, "November 14, 2023");
}

TEST_F(ItemMapperTest, AlbumWithoutUsableTracksHasNone) {
    nlohmann::json raw = fixture("album.json").raw();
    for (const nlohmann::json& tracks : {nlohmann::json::array(), nlohmann::json("s-1,s-2"),
                                         nlohmann::json({{"0", {{"id", 1}}}})}) {
        raw["tracks"] = tracks;
        const ItemPtr album = Item::parseItemFrom(JSON(raw), false);
        ASSERT_TRUE(album);
        EXPECT_TRUE(album->tracks.empty());
        EXPECT_FALSE(album->hasTracks);
        EXPECT_EQ(album->tracksIDs, "");
    }
}

TEST_F(ItemMapperTest, PlaylistMapperReadsTheOwnerUnderArtist) {
    const ItemPtr playlist = Item::parsePlaylistFrom(fixture("playlist.json"));
    ASSERT_TRUE(playlist);
    EXPECT_EQ(playlist->itemID, "31337");
    EXPECT_EQ(playlist->itemType(), ItemType::playlist);
    EXPECT_EQ(playlist->artist, "Kemi Curates");
    EXPECT_EQ(playlist->uploaderName, "Kemi Curates");
    EXPECT_EQ(playlist->uploaderId, "u-5");
    EXPECT_EQ(playlist->uploaderSlug, "kemi-curates");
    EXPECT_EQ(playlist->uploaderTwitter, "kemicurates");
    EXPECT_TRUE(playlist->uploaderVerified);
    EXPECT_FALSE(playlist->uploaderTastemaker);
    // The whole uploader block comes from the owner; "uploader" is not looked at.
    EXPECT_EQ(playlist->uploaderImage, "https://img.tunebrook.test/u/5.jpg");
    EXPECT_EQ(playlist->uploaderFollowersCount, 1200);

    nlohmann::json raw = fixture("playlist.json").raw();
    raw.erase("artist");
    const ItemPtr ownerless = Item::parsePlaylistFrom(JSON(raw));
    ASSERT_TRUE(ownerless);
    EXPECT_EQ(ownerless->uploaderName, std::nullopt);
    EXPECT_EQ(ownerless->uploaderImage, std::nullopt);
    EXPECT_EQ(ownerless->uploaderFollowersCount, std::nullopt);
}

TEST_F(ItemMapperTest, PlaylistMapperReadsWhatTheSongMapperReadsExceptTheStream) {
    const ItemPtr playlist = Item::parsePlaylistFrom(fixture("playlist.json"));
    ASSERT_TRUE(playlist);
    EXPECT_EQ(playlist->featured, "Ama K");
    EXPECT_EQ(playlist->producer, "Tobi Beats");
    EXPECT_EQ(playlist->uploaded, "November 14, 2023");
    EXPECT_EQ(playlist->buyURL, "https://store.example/pl/31337");  // cleaned
    EXPECT_TRUE(playlist->streamOnly);
    EXPECT_TRUE(playlist->videoAd);
    EXPECT_TRUE(playlist->amp);
    EXPECT_EQ(playlist->ampDuration, 30);
    // A playlist has no stream of its own.
    EXPECT_EQ(playlist->url, std::nullopt);
    EXPECT_EQ(playlist->duration, 0);
    EXPECT_EQ(playlist->volumeData, std::nullopt);

    nlohmann::json raw = fixture("playlist.json").raw();
    for (const char* key : {"featuring", "producer", "released", "buy_link", "stream_only",
                            "video_ad", "amp", "amp_duration"}) {
        raw.erase(key);
    }
    const ItemPtr bare = Item::parsePlaylistFrom(JSON(raw));
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->featured, std::nullopt);
    EXPECT_EQ(bare->uploaded, std::nullopt);
    EXPECT_EQ(bare->buyURL, std::nullopt);
    EXPECT_FALSE(bare->streamOnly || bare->videoAd || bare->amp);
    EXPECT_EQ(bare->ampDuration, 0);
}

TEST_F(ItemMapperTest, PlaylistMapperReadsItsOwnFields) {
    const ItemPtr playlist = Item::parsePlaylistFrom(fixture("playlist.json"));
    ASSERT_TRUE(playlist);
    EXPECT_EQ(playlist->image, "https://img.tunebrook.test/pl/31337.jpg");
    EXPECT_EQ(playlist->originalImage, "https://img.tunebrook.test/pl/31337-base.jpg?width=750");
    EXPECT_EQ(playlist->banner, "https://img.tunebrook.test/pl/31337-banner.jpg");
    EXPECT_EQ(playlist->playlistTracksCount, 3);
    EXPECT_TRUE(playlist->privatePlaylist);
    EXPECT_EQ(playlist->created, "January 1, 2020");
    EXPECT_EQ(playlist->lastUpdated, "November 22, 2026");
    EXPECT_EQ(playlist->desc, "Songs for the ring road.");
    EXPECT_EQ(playlist->plays, "99");
    EXPECT_EQ(playlist->favorites, "7");
    EXPECT_EQ(playlist->reposts, "0");
    EXPECT_EQ(playlist->rankYearly, "3");
    EXPECT_EQ(playlist->repostTimestamp, 1795309200);
    EXPECT_EQ(playlist->repostArtistName, "Relay");
    EXPECT_TRUE(playlist->isTakenDown());
    EXPECT_TRUE(playlist->georestricted);
}

TEST_F(ItemMapperTest, PlaylistMapperDiffersFromTheSongMapperOnPurpose) {
    nlohmann::json raw = fixture("playlist.json").raw();
    raw["type"] = "album";
    raw.erase("repost_artist");
    const ItemPtr playlist = Item::parsePlaylistFrom(JSON(raw));
    ASSERT_TRUE(playlist);
    EXPECT_TRUE(playlist->isPlaylist);  // whatever the type says
    EXPECT_FALSE(playlist->isAlbum);
    EXPECT_EQ(playlist->repostArtistName, std::nullopt);  // no fallback to "repost"
    EXPECT_EQ(playlist->itemsIDs, "p-1,p-3");             // not read as album tracks

    // The same answer through the song mapper reads the uploader block and streaming data.
    const ItemPtr asSong = Item::parseItemFrom(fixture("playlist.json"), false);
    ASSERT_TRUE(asSong);
    EXPECT_EQ(asSong->itemType(), ItemType::playlist);
    EXPECT_EQ(asSong->uploaderName, "Not The Owner");
    EXPECT_EQ(asSong->url, "https://should.not/appear.mp3");
    EXPECT_EQ(asSong->itemsIDs, "p-1,p-3");
    // The geo-restriction drop exists only in the song mapper.
    EXPECT_FALSE(Item::parseItemFrom(fixture("playlist.json"), true));
    EXPECT_TRUE(Item::parsePlaylistFrom(fixture("playlist.json")));

    raw["id"] = "";
    EXPECT_FALSE(Item::parsePlaylistFrom(JSON(raw)));
}

TEST_F(ItemMapperTest, PlaylistTracksGoThroughTheSongMapperWithoutTheDropFlag) {
    const ItemPtr playlist = Item::parsePlaylistFrom(fixture("playlist.json"));
    ASSERT_TRUE(playlist);
    ASSERT_EQ(playlist->items.size(), 2u);  // the element without id is left out
    EXPECT_EQ(playlist->itemsIDs, "p-1,p-3");
    EXPECT_TRUE(playlist->hasItems);

    const Item& first = *playlist->items[0];
    EXPECT_TRUE(first.georestricted);  // kept: the drop flag is off for tracks
    EXPECT_TRUE(first.isPlaylistTrack);
    EXPECT_EQ(first.parentID, "31337");
    EXPECT_EQ(first.uploaderSlug, "volt");        // tracks keep their own uploader
    EXPECT_EQ(first.itemType(), ItemType::song);  // a song first, a playlist track second

    const Item& albumInside = *playlist->items[1];
    EXPECT_EQ(albumInside.itemType(), ItemType::album);
    ASSERT_EQ(albumInside.tracks.size(), 1u);
    EXPECT_EQ(albumInside.tracks[0]->parentID, "p-3");

    ASSERT_EQ(playlist->availableItems().size(), 1u);
    EXPECT_EQ(playlist->availableItems()[0]->itemID, "p-3");
}

}  // namespace
}  // namespace tb
