// Answers no honest service sends: every mapper must survive them with nil, 0, false or a
// dropped element, and never crash, throw or recurse without end.

#include <cstdint>
#include <limits>
#include <string>

#include <nlohmann/json.hpp>

#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBFeaturedSpot.h"
#include "model/TBNotification.h"
#include "platform/JSON.h"
#include "platform/JsonLimits.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

const char* const kNotDictionaries[] = {"null",          "0",   "1e400", "\"id\"", "[]",
                                        "[{\"id\": 1}]", "true"};

TEST(HostileAnswerTest, AnythingButADictionaryMapsToNothing) {
    for (const char* text : kNotDictionaries) {
        const JSON json = JSON::parse(text);
        EXPECT_FALSE(Item::parseItemFrom(json, false)) << text;
        EXPECT_FALSE(Item::parsePlaylistFrom(json)) << text;
        EXPECT_FALSE(Artist::parseFrom(json)) << text;
        EXPECT_FALSE(TBNotification::fromJSON(json).has_value()) << text;
        const TBFeaturedSpot spot = TBFeaturedSpot::fromJSON(json);
        EXPECT_FALSE(spot.item || spot.artist) << text;
    }
}

TEST(HostileAnswerTest, EveryFieldOfTheWrongKindReadsAsNothing) {
    // Each key the mappers read, holding a value of the wrong kind.
    const JSON json = JSON::parse(R"({
        "id": "x-1", "type": ["song"], "artist": {"name": 1}, "title": 42,
        "streaming_url": {}, "image": [], "image_base": {"a": 1}, "description": false,
        "url_slug": 1.5, "featuring": null, "producer": [], "genre": {},
        "uploader": "uploader", "buy_link": 7, "stream_only": ["yes"], "released": "soon",
        "video_ad": {}, "amp": [], "amp_duration": {}, "tracks": {"0": {"id": "t"}},
        "stats": [1, 2], "volume_data": [1, 2, 3], "duration": [], "repost_ts": {},
        "repost_artist": "name", "repost": 5, "status": 404, "geo_restricted": [],
        "track_count": {}, "private": true, "created": [], "updated": {}, "image_banner": 0,
        "is_admin": [], "name": 5, "pinned": "all", "verified": ["yes"], "followers_count": {}
    })");
    ASSERT_TRUE(json.exists());

    const ItemPtr song = Item::parseItemFrom(json, true);
    ASSERT_TRUE(song);
    EXPECT_EQ(song->type, std::nullopt);
    EXPECT_EQ(song->itemType(), ItemType::unknown);
    EXPECT_EQ(song->title, std::nullopt);
    EXPECT_EQ(song->url, std::nullopt);
    EXPECT_EQ(song->image, std::nullopt);
    EXPECT_EQ(song->originalImage, std::nullopt);
    EXPECT_EQ(song->uploaderName, std::nullopt);
    EXPECT_FALSE(song->streamOnly || song->videoAd || song->amp || song->georestricted);
    EXPECT_EQ(song->uploaded, std::nullopt);
    EXPECT_EQ(song->plays, std::nullopt);
    EXPECT_EQ(song->volumeData, std::nullopt);
    EXPECT_EQ(song->duration, 0);
    EXPECT_EQ(song->repostTimestamp, 0);
    EXPECT_EQ(song->repostArtistName, std::nullopt);
    EXPECT_EQ(song->status, std::nullopt);
    EXPECT_TRUE(song->tracks.empty() && song->items.empty());

    const ItemPtr playlist = Item::parsePlaylistFrom(json);
    ASSERT_TRUE(playlist);
    EXPECT_EQ(playlist->playlistTracksCount, 0);
    EXPECT_FALSE(playlist->privatePlaylist);  // true is not "yes"
    EXPECT_EQ(playlist->created, std::nullopt);
    EXPECT_EQ(playlist->banner, std::nullopt);
    EXPECT_FALSE(playlist->hasItems);

    const ArtistPtr artist = Artist::parseFrom(json);
    ASSERT_TRUE(artist);
    EXPECT_EQ(artist->name, std::nullopt);
    EXPECT_EQ(artist->pinnedCount, 0);
    EXPECT_FALSE(artist->admin || artist->verified || artist->tastemaker);
    EXPECT_EQ(artist->created, std::nullopt);
}

TEST(HostileAnswerTest, HugeNumbersGiveZeroOrSaturateButNeverOverflow) {
    const JSON json = JSON::parse(R"({
        "id": 1e400, "type": "album", "duration": 1e400, "repost_ts": "9999999999999999999999",
        "amp_duration": -1e400, "released": -1e400, "track_count": 9999999999999999999999,
        "uploader": {"followers_count": 9999999999999999999999},
        "stats": {"plays": 1e400, "favorites": -9999999999999999999999},
        "volume_data": "9999999999999999999999,1,-9223372036854775808",
        "tracks": [{"id": "t", "duration": "1e400"}], "created": 1e300
    })");
    ASSERT_TRUE(json.exists());

    const ItemPtr album = Item::parseItemFrom(json, false);
    ASSERT_TRUE(album);
    EXPECT_FALSE(album->itemID->empty());
    EXPECT_EQ(album->duration, 0);
    EXPECT_EQ(album->repostTimestamp, 0);
    EXPECT_EQ(album->ampDuration, 0);
    EXPECT_EQ(album->uploaded, std::nullopt);
    EXPECT_EQ(album->uploaderFollowersCount, std::numeric_limits<std::int64_t>::max());
    EXPECT_TRUE(album->plays.has_value());
    EXPECT_EQ(album->volumeData,
              (std::vector<std::int64_t>{1, std::numeric_limits<std::int64_t>::min()}));
    ASSERT_EQ(album->tracks.size(), 1u);
    EXPECT_EQ(album->tracks[0]->duration, 0);

    const ItemPtr playlist = Item::parsePlaylistFrom(json);
    ASSERT_TRUE(playlist);
    EXPECT_EQ(playlist->playlistTracksCount, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(playlist->created, std::nullopt);
}

// {"id":"0","type":"playlist","tracks":[{"id":"1",...}]}, `levels` deep.
std::string nestedPlaylists(int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) {
        text += R"({"id":")" + std::to_string(i) + R"(","type":"playlist","tracks":[)";
    }
    for (int i = 0; i < levels; ++i) {
        text += "]}";
    }
    return text;
}

int depthOf(const ItemPtr& item) {
    int depth = 0;
    for (const Item* level = item.get(); level != nullptr;
         level = level->items.empty() ? nullptr : level->items.front().get()) {
        ++depth;
    }
    return depth;
}

TEST(HostileAnswerTest, NestedTracksAreFollowedOnlyAFewLevels) {
    // Within the parser's limit: the mapper itself must stop.
    const JSON allowed = JSON::parse(nestedPlaylists(kMaxJsonDepth / 2));
    ASSERT_TRUE(allowed.exists());
    const ItemPtr playlist = Item::parseItemFrom(allowed, false);
    ASSERT_TRUE(playlist);
    EXPECT_GT(depthOf(playlist), 2);
    EXPECT_LT(depthOf(playlist), 16);

    // Beyond it: nothing gets to the mapper.
    EXPECT_FALSE(Item::parseItemFrom(JSON::parse(nestedPlaylists(kMaxJsonDepth)), false));

    // A tree built in code is not checked by the parser; the mapper stops all the same.
    nlohmann::json deep = {{"id", "leaf"}};
    for (int i = 0; i < 20000; ++i) {
        nlohmann::json level = nlohmann::json::object();
        level["id"] = std::to_string(i);
        level["type"] = "playlist";
        level["tracks"] = nlohmann::json::array();
        level["tracks"].push_back(std::move(deep));
        deep = std::move(level);
    }
    const ItemPtr built = Item::parsePlaylistFrom(JSON(std::move(deep)));
    ASSERT_TRUE(built);
    EXPECT_LT(depthOf(built), 16);
}

TEST(HostileAnswerTest, InvalidUtf8NeverReachesTheMappersFromText) {
    const JSON json = JSON::parse("{\"id\": \"ok\", \"title\": \"\xff\xfe\"}");
    const ItemPtr repaired = Item::parseItemFrom(json, false);
    ASSERT_TRUE(repaired);
    EXPECT_EQ(repaired->itemID, "ok");
    EXPECT_EQ(repaired->title, "\xef\xbf\xbd\xef\xbf\xbd");  // U+FFFD for each bad byte

    // Bytes put there in code pass through as they are and still make a safe file name.
    const JSON built(nlohmann::json{{"id", std::string("\xff/../\xc3")}, {"type", "song"}});
    const ItemPtr song = Item::parseItemFrom(built, false);
    ASSERT_TRUE(song);
    EXPECT_EQ(song->localFileURL("/docs"), "/docs/%FF%2F..%2F%C3.mp3");
}

TEST(HostileAnswerTest, AlbumTracksOfEveryKindOfJunkAreDropped) {
    const JSON json = JSON::parse(R"({"id": "a", "type": "album", "tracks": [
        null, 1, "s", [], {}, {"song_id": null, "id": ""}, {"song_id": {}, "id": []},
        {"song_id": " "}
    ]})");
    const ItemPtr album = Item::parseItemFrom(json, false);
    ASSERT_TRUE(album);
    ASSERT_EQ(album->tracks.size(), 1u);  // " " is an id, however odd
    EXPECT_EQ(album->tracks[0]->trackNumber, 8);
}

}  // namespace
}  // namespace tb
