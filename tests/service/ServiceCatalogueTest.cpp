#include <set>

#include "service/ServiceFixture.h"
#include "tunebrook-service/Service.h"
#include "tunebrook-service/ServiceContext.h"

namespace tb::test {
namespace {

using Scheme = ServiceFixture::Scheme;

class ServiceCatalogueTest : public ServiceFixture {};

TEST_F(ServiceCatalogueTest, ChartsPageThroughDistinctRowsFilteredByGenreAndPeriod) {
    auto first = call("GET", "chart/songs/total", {{"page", "1"}});
    auto second = call("GET", "chart/songs/total", {{"page", "2"}});
    ASSERT_EQ(first.status, 200);
    ASSERT_EQ(first.json["results"].size(), 20u);
    ASSERT_EQ(second.json["results"].size(), 20u);
    auto a = idSet(first.json["results"], true);
    for (const auto& id : idSet(second.json["results"], true)) {
        EXPECT_FALSE(a.count(id)) << id;
    }
    EXPECT_EQ(call("GET", "chart/songs/total", {{"page", "1"}}, Scheme::signer).status, 200);
    auto far = call("GET", "chart/songs/total", {{"page", "500"}});
    EXPECT_EQ(far.status, 200);
    EXPECT_TRUE(far.json["results"].empty());
    EXPECT_EQ(call("GET", "chart/songs/total", {{"page", "0"}}).status, 400);
    EXPECT_EQ(call("GET", "chart/songs/total", {{"page", "x"}}).status, 400);

    auto rap = call("GET", "rap/chart/songs/weekly");
    ASSERT_EQ(rap.status, 200);
    ASSERT_FALSE(rap.json["results"].empty());
    for (const auto& song : rap.json["results"]) {
        EXPECT_EQ(song["genre"], "rap");
        EXPECT_EQ(song["type"], "song");
    }
    auto albums = call("GET", "chart/albums/monthly");
    ASSERT_FALSE(albums.json["results"].empty());
    EXPECT_EQ(albums.json["results"][0]["type"], "album");
    EXPECT_FALSE(albums.json["results"][0]["tracks"].empty());
    EXPECT_EQ(call("GET", "chart/songs/hourly").status, 404);
    EXPECT_EQ(call("GET", "polka/chart/songs/weekly").status, 404);
    EXPECT_EQ(call("GET", "music/jazz/trending").status, 200);
    EXPECT_EQ(call("GET", "music/recent", {{"page", "2"}}).status, 200);
}

TEST_F(ServiceCatalogueTest, ItemsComeInTheVariedShapesOfTheRealService) {
    auto page = call("GET", "music/recent", {{"page", "1"}});
    bool numberId = false, textId = false, textCounter = false, numberCounter = false;
    for (int p = 1; p <= 3; ++p) {
        auto answer = call("GET", "music/recent", {{"page", std::to_string(p)}});
        for (const auto& item : answer.json["results"]) {
            (item["id"].is_number() ? numberId : textId) = true;
            (item["stats"]["plays"].is_string() ? textCounter : numberCounter) = true;
            EXPECT_TRUE(item["uploader"]["verified"] == "yes" ||
                        item["uploader"]["verified"] == "tastemaker" ||
                        item["uploader"]["verified"] == "");
        }
    }
    EXPECT_TRUE(numberId && textId && textCounter && numberCounter);
    const auto& first = page.json["results"][0];
    for (const char* key : {"id", "type", "title", "artist", "url_slug", "image", "uploader",
                            "released", "stats", "geo_restricted"}) {
        EXPECT_TRUE(first.contains(key)) << key;
    }
}

TEST_F(ServiceCatalogueTest, OneItemByIdOrSlugsAnswersResultsAsAnObject) {
    std::string id = playableSongId(3);
    auto song = call("GET", "music/song/" + id);
    ASSERT_EQ(song.status, 200);
    ASSERT_TRUE(song.json["results"].is_object());
    EXPECT_TRUE(song.json["results"]["stats"].contains("rankings"));
    std::string artist = song.json["results"]["uploader"]["url_slug"];
    std::string slug = song.json["results"]["url_slug"];
    auto bySlug = call("GET", "music/" + artist + "/song/" + slug);
    ASSERT_EQ(bySlug.status, 200);
    EXPECT_EQ(bySlug.json["results"]["title"], song.json["results"]["title"]);
    // The form of shared links: uploader and item slug alone.
    auto byLink = call("GET", "music/" + artist + "/" + slug);
    ASSERT_EQ(byLink.status, 200);
    EXPECT_EQ(byLink.json["results"]["id"], song.json["results"]["id"]);
    EXPECT_EQ(call("GET", "music/" + artist + "/no-such-song").status, 404);
    EXPECT_EQ(call("GET", "music/album/" + id).status, 404);
    EXPECT_EQ(call("GET", "music/song/999999").status, 404);

    auto playlist = call("GET", "playlist/70001");
    ASSERT_EQ(playlist.status, 200);
    EXPECT_FALSE(playlist.json["results"]["tracks"].empty());
    EXPECT_TRUE(playlist.json["results"].contains("artist"));
    auto playlistByLink = call(
        "GET", "playlist/" + playlist.json["results"]["artist"]["url_slug"].get<std::string>() +
                   "/" + playlist.json["results"]["url_slug"].get<std::string>());
    ASSERT_EQ(playlistByLink.status, 200);
    EXPECT_EQ(playlistByLink.json["results"]["id"], playlist.json["results"]["id"]);
    // A private playlist stays hidden from others.
    EXPECT_EQ(call("GET", "playlist/70024").status, 404);
}

TEST_F(ServiceCatalogueTest, CategoriesTheirPlaylistsAndFeaturedSpotsWithTypedRefs) {
    auto categories = call("GET", "tags/page/1", {{"include_playlists", "no"}});
    ASSERT_EQ(categories.status, 200);
    ASSERT_TRUE(categories.json["results"][0].is_string());
    EXPECT_EQ(categories.json["results"][0], "Trending");
    auto chill = call("GET", "tags/Chill/page/1");
    ASSERT_EQ(chill.status, 200);
    ASSERT_FALSE(chill.json["results"].empty());
    EXPECT_EQ(chill.json["results"][0]["type"], "playlist");
    EXPECT_EQ(call("GET", "tags/Nope/page/1").status, 404);
    EXPECT_FALSE(call("GET", "playlist/trending", {{"page", "1"}}).json["results"].empty());
}

TEST_F(ServiceCatalogueTest, SearchFiltersAndHeadsAndRelatedResults) {
    auto all = call("GET", "search",
                    {{"q", "love"}, {"show", "music"}, {"sort", "popular"}, {"page", "1"}});
    ASSERT_EQ(all.status, 200);
    EXPECT_EQ(all.json["related"], 0);
    EXPECT_FALSE(all.json["results"].empty());

    auto verified =
        call("GET", "search",
             {{"q", "e"}, {"show", "songs"}, {"verified", "on"}, {"genre", "rap"}, {"page", "1"}});
    for (const auto& song : verified.json["results"]) {
        EXPECT_NE(song["uploader"]["verified"], "");
        EXPECT_EQ(song["genre"], "rap");
    }
    // An exact artist name brings that account to the head of the first page only.
    auto verifiedArtist =
        service().context().accounts.find("a.verified = 'yes' ORDER BY a.id", {}, 0, 1);
    ASSERT_FALSE(verifiedArtist.empty());
    auto head = call("GET", "search", {{"q", verifiedArtist[0].name}, {"show", "music"}});
    EXPECT_EQ(head.json["verified_artist"]["url_slug"], verifiedArtist[0].slug);
    auto secondPage =
        call("GET", "search", {{"q", verifiedArtist[0].name}, {"show", "music"}, {"page", "2"}});
    EXPECT_FALSE(secondPage.json.contains("verified_artist"));
    auto playlistsOnly =
        call("GET", "search", {{"q", verifiedArtist[0].name}, {"show", "playlists"}});
    EXPECT_FALSE(playlistsOnly.json.contains("verified_artist"));

    auto related = call("GET", "search", {{"q", "zzqx love"}, {"show", "music"}});
    EXPECT_EQ(related.json["related"], 1);

    auto artists = call("GET", "search", {{"q", "a"}, {"show", "artists"}});
    ASSERT_FALSE(artists.json["results"].empty());
    EXPECT_TRUE(artists.json["results"][0].contains("followers_count"));
    auto suggestions = call("GET", "search_autosuggest", {{"q", "lo"}});
    ASSERT_TRUE(suggestions.json["results"].is_array());
    EXPECT_EQ(call("GET", "search", {{"q", ""}}).status, 400);
    EXPECT_EQ(call("GET", "search", {{"q", "a"}, {"show", "videos"}}).status, 400);
}

TEST_F(ServiceCatalogueTest, ArtistPagesAndTokenPagedFollowers) {
    auto artist = call("GET", "artist/" + call("GET", "music/song/" + playableSongId())
                                              .json["results"]["uploader"]["url_slug"]
                                              .get<std::string>());
    ASSERT_EQ(artist.status, 200);
    std::string slug = artist.json["results"]["url_slug"];
    for (const char* list : {"/uploads", "/favorites", "/playlists", "/pinned"}) {
        auto answer = call("GET", "artist/" + slug + list);
        EXPECT_EQ(answer.status, 200) << list;
        EXPECT_TRUE(answer.json["results"].is_array()) << list;
    }
    auto following = call("GET", "artist/" + slug + "/following");
    EXPECT_EQ(following.status, 200);
    EXPECT_EQ(call("GET", "artist/" + slug + "/follows", {{"paging_token", "garbage"}}).status,
              400);
    EXPECT_EQ(call("GET", "artist/nobody-here").status, 404);
    EXPECT_FALSE(call("GET", "user/follow", {{"page", "1"}}).json["results"].empty());

    auto featured = call("GET", "featured");
    ASSERT_EQ(featured.status, 200);
    ASSERT_GE(featured.json["results"].size(), 4u);
    std::set<std::string> types;
    for (const auto& spot : featured.json["results"]) {
        EXPECT_TRUE(spot["type"].is_string());
        types.insert(spot["ref"]["type"]);
    }
    EXPECT_TRUE(types.count("artist") && types.count("playlist") && types.count("song"));
}

}  // namespace
}  // namespace tb::test
