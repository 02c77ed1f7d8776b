#include "service/ServiceFixture.h"

namespace tb::test {
namespace {

class ServiceLibraryTest : public ServiceFixture {
  protected:
    void SetUp() override {
        ServiceFixture::SetUp();
        loginDemo();
    }
};

TEST_F(ServiceLibraryTest, DownloadsAreAddedListedInPagesAndRemoved) {
    std::vector<std::string> songs;
    for (int i = 0; i < 5; ++i) {
        songs.push_back(playableSongId(i));
    }
    auto added = call("POST", "user/downloads", {{"music_id", songs[0]}});
    EXPECT_EQ(added.status, 200);
    std::string rest = songs[1] + "," + songs[2] + "," + songs[3] + "," + songs[4] + ",999999";
    auto more = call("POST", "user/downloads", {{"music_id", rest}});
    EXPECT_EQ(more.json["added"].size(), 4u);
    EXPECT_EQ(more.json["ignored"].size(), 1u);

    auto first = call("GET", "user/downloads", {{"type", "songs"}, {"limit", "3"}});
    ASSERT_EQ(first.json["results"].size(), 3u);
    ASSERT_TRUE(first.json["paging_token"].is_string());
    auto second =
        call("GET", "user/downloads",
             {{"type", "songs"}, {"limit", "3"}, {"paging_token", first.json["paging_token"]}});
    EXPECT_EQ(second.json["results"].size(), 2u);
    EXPECT_FALSE(second.json.contains("paging_token"));
    auto listed = idSet(first.json["results"], true);
    listed.merge(idSet(second.json["results"], true));
    EXPECT_EQ(listed, std::set<std::string>(songs.begin(), songs.end()));

    EXPECT_EQ(call("DELETE", "user/downloads/" + songs[0]).status, 200);
    // Already gone is no failure: the list is as asked.
    EXPECT_EQ(call("DELETE", "user/downloads/" + songs[0]).status, 200);
    EXPECT_EQ(call("DELETE", "user/downloads/not-an-id").status, 404);
    EXPECT_EQ(call("GET", "user/downloads").json["results"].size(), 4u);
    EXPECT_TRUE(call("GET", "user/downloads", {{"type", "playlists"}}).json["results"].empty());
    EXPECT_EQ(call("GET", "user/downloads", {{"limit", "0"}}).status, 400);

    auto report = raw("GET", "/admin/report").json["counts"];
    EXPECT_EQ(report["downloads_added"], 2);
    EXPECT_EQ(report["download_removed"], 2);
}

TEST_F(ServiceLibraryTest, StatusListsOnlyWhatIsNoLongerOfferedWithSomeIdsAsNumbers) {
    std::string gone = songIdWithStatus("takedown");
    std::string suspended = songIdWithStatus("suspended");
    std::string fine = playableSongId();
    auto answer = call("POST", "music/status",
                       {{"music_id", gone + "," + fine + "," + suspended + ",123,x"}});
    ASSERT_TRUE(answer.json.is_array());
    EXPECT_EQ(idSet(answer.json), (std::set<std::string>{gone, suspended, "123"}));

    // A song taken down later shows up from then on.
    raw("POST", "/admin/music/" + fine + "/status", {}, R"({"status":"unplayable"})",
        "application/json");
    EXPECT_EQ(call("POST", "music/status", {{"music_id", fine}}).json.size(), 1u);
}

TEST_F(ServiceLibraryTest, HighlightWritesReplaceTheListWithinTheLimit) {
    std::string slug = call("GET", "user").json["url_slug"];
    std::string a = playableSongId(0), b = playableSongId(1), c = playableSongId(2);
    auto entities = [](std::vector<std::string> ids) {
        nlohmann::json list = nlohmann::json::array();
        for (size_t i = 0; i < ids.size(); ++i) {
            list.push_back({{"kind", "song"}, {"id", ids[i]}, {"position", i}});
        }
        return list.dump();
    };
    auto added = call("POST", "artist/" + slug + "/pinned", {{"entities", entities({a, b})}});
    ASSERT_EQ(added.status, 200) << added.body;
    EXPECT_EQ(added.json["results"].size(), 2u);
    auto reordered = call("PUT", "artist/" + slug + "/pinned", {{"entities", entities({b, a})}});
    EXPECT_EQ(idText(reordered.json["results"][0]["id"]), b);
    auto removed = call("DELETE", "artist/" + slug + "/pinned", {{"entities", entities({b})}});
    EXPECT_EQ(removed.json["results"].size(), 1u);
    EXPECT_EQ(call("GET", "artist/" + slug + "/pinned").json["results"].size(), 1u);

    auto tooMany = call("POST", "artist/" + slug + "/pinned",
                        {{"entities", entities({a, b, c, playableSongId(3), playableSongId(4)})}});
    EXPECT_EQ(tooMany.status, 400);
    auto album = call("POST", "artist/" + slug + "/pinned",
                      {{"entities", R"([{"kind":"album","id":")" + a + R"("}])"}});
    EXPECT_EQ(album.status, 400);
    auto someoneElse = call("POST",
                            "artist/" +
                                call("GET", "music/song/" + a)
                                    .json["results"]["uploader"]["url_slug"]
                                    .get<std::string>() +
                                "/pinned",
                            {{"entities", entities({a})}});
    EXPECT_EQ(someoneElse.status, 403);
    EXPECT_EQ(raw("GET", "/admin/report?kind=highlights").json["events"].size(), 3u);
}

TEST_F(ServiceLibraryTest, NotificationsAreMarkedSeenFollowsFillTheFeedAndFavouritesTheRecord) {
    auto all = call("GET", "user/native-notifications");
    ASSERT_EQ(all.status, 200);
    ASSERT_FALSE(all.json["results"].empty());
    int unseen = all.json["counters"]["unseen"];
    EXPECT_GT(unseen, 0);
    std::set<std::string> verbs;
    for (const auto& item : all.json["results"]) {
        verbs.insert(item["verb"]);
        EXPECT_EQ(item["created_at"].get<std::string>().size(), 26u);
        EXPECT_TRUE(item["actor"].contains("url_slug"));
    }
    EXPECT_TRUE(verbs.count("follow") && verbs.count("comment"));
    auto onlyUnseen = call("GET", "user/native-notifications", {{"only_unseen", "1"}});
    EXPECT_EQ(onlyUnseen.json["results"].size(), static_cast<size_t>(unseen));
    EXPECT_EQ(call("POST", "user/native-notifications/seen", {{"for_all", "true"}}).status, 200);
    auto after = call("GET", "user/native-notifications", {{"only_unseen", "1"}});
    EXPECT_TRUE(after.json["results"].empty());
    EXPECT_EQ(after.json["counters"]["unseen"], 0);

    auto feed = call("GET", "user/feed", {{"page", "1"}});
    ASSERT_EQ(feed.status, 200);
    EXPECT_FALSE(feed.json["results"].empty());
    auto uploads = call("GET", "user/feed", {{"page", "1"}, {"only_uploads", "1"}});
    for (const auto& item : uploads.json["results"]) {
        EXPECT_FALSE(item.contains("repost_artist"));
    }
    // The first page counts as seen.
    EXPECT_EQ(call("GET", "user").json["new_feed_items"], 0);

    std::string song = playableSongId(7);
    EXPECT_EQ(call("PUT", "music/" + song + "/favorite", {{"section", "Browse"}}).status, 200);
    EXPECT_EQ(call("PUT", "music/" + song + "/repost", {{"section", "Browse"}}).status, 200);
    auto user = call("GET", "user").json;
    const auto favorites = idSet(user["favorite_music"]);
    EXPECT_TRUE(favorites.count(song));
    EXPECT_TRUE(idSet(user["reups"]).count(song));
    EXPECT_EQ(call("DELETE", "music/" + song + "/favorite").status, 200);
    EXPECT_EQ(call("GET", "user").json["favorite_music"].size(), favorites.size() - 1);
}

}  // namespace
}  // namespace tb::test
