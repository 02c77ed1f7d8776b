// The catalogue operations: what each asks of the service (method, path, parameters) and
// what it hands back.

#include "CatalogueFixture.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBNotification.h"
#include "platform/JSON.h"

#include <gmock/gmock.h>

namespace tb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;
using json = nlohmann::json;

using Params = std::map<std::string, std::string>;

class TBDataManagerOperationsTest : public CatalogueTest {
  protected:
    // Request `index` went to `path` with exactly `params`.
    void expectCall(std::size_t index, const std::string& path, const Params& params = {}) {
        SCOPED_TRACE(index);
        EXPECT_EQ(call(index).path, path);
        EXPECT_EQ(call(index).params, params);
    }
};

// The live host is every other test's (their paths are relative to it).
TEST_F(TBDataManagerOperationsTest, TheEnvironmentPicksTheHostOfTheKeyStore) {
    TBDataManager::useDev();
    manager().getTrending("all", 0, nullptr, nullptr);
    EXPECT_EQ(platform.http.request(0).url, "http://127.0.0.1:8081/v1/music/trending?page=1");
}

TEST_F(TBDataManagerOperationsTest, ChartsNameTypeAndPeriodWithTheGenreInFrontUnlessAll) {
    manager().getItems("songs", "all", "weekly", 0, nullptr, nullptr);
    manager().getItems("albums", "rap", "monthly", 2, nullptr, nullptr);
    manager().getItems("songs", "", "daily", 0, nullptr, nullptr);

    EXPECT_EQ(call(0).method, "GET");
    expectCall(0, "chart/songs/weekly", Params{{"page", "1"}});
    expectCall(1, "rap/chart/albums/monthly", Params{{"page", "3"}});
    EXPECT_EQ(call(2).path, "chart/songs/daily");
}

TEST_F(TBDataManagerOperationsTest, TrendingAndRecentPutTheGenreBeforeTheirName) {
    manager().getTrending("all", 0, nullptr, nullptr);
    manager().getTrending("afrobeats", 4, nullptr, nullptr);
    manager().getRecent("", 0, nullptr, nullptr);
    manager().getRecent("dj-mix", 1, nullptr, nullptr);

    EXPECT_EQ(call(0).path, "music/trending");
    expectCall(1, "music/afrobeats/trending", Params{{"page", "5"}});
    EXPECT_EQ(call(2).path, "music/recent");
    expectCall(3, "music/dj-mix/recent", Params{{"page", "2"}});
}

TEST_F(TBDataManagerOperationsTest, PagedListsDropRestrictedMusicAndReturnTheirCall) {
    ListOutcome outcome;
    const NextPageData next =
        manager().getTrending("rap", 1, itemsInto(outcome), failureInto(outcome));
    EXPECT_EQ(next.url(), "music/rap/trending");
    EXPECT_EQ(next.params(), (json{{"page", "2"}}));

    auto body = resultsOf({songJson("1"), restrictedSongJson("2"), playlistJson("3")});
    body["paging_token"] = "next-token";
    answer(0, 200, body);

    ASSERT_EQ(outcome.successes, 1);
    EXPECT_THAT(idsOf(outcome.items), ElementsAre("1", "3"));
    EXPECT_TRUE(outcome.items[1]->isPlaylist);
    EXPECT_EQ(outcome.items[1]->uploaderName, "Curator");
    EXPECT_EQ(outcome.pagingToken, "next-token");
    EXPECT_EQ(outcome.response, body);

    // A paging token that is no string is no token.
    manager().getTrending("rap", 2, itemsInto(outcome), failureInto(outcome));
    body["paging_token"] = 3;
    answer(1, 200, body);
    ASSERT_EQ(outcome.successes, 2);
    EXPECT_EQ(outcome.pagingToken, std::nullopt);
}

TEST_F(TBDataManagerOperationsTest, DownloadsAskFiftyOfATypeAndSendATokenOnlyWhenThereIsOne) {
    manager().getDownloads("all", std::nullopt, nullptr, nullptr);
    manager().getDownloads("songs", std::string(), nullptr, nullptr);
    manager().getDownloads("albums", std::string("tok"), nullptr, nullptr);

    expectCall(0, "user/downloads", Params{{"type", "all"}, {"limit", "50"}});
    EXPECT_EQ(call(1).params, (Params{{"type", "songs"}, {"limit", "50"}}));
    EXPECT_EQ(call(2).params,
              (Params{{"type", "albums"}, {"limit", "50"}, {"paging_token", "tok"}}));
}

TEST_F(TBDataManagerOperationsTest, InfoReadsAskByIdOrBySlugAndMapTheResultsDictionary) {
    std::vector<ItemPtr> got;
    auto keep = [&got](const ItemPtr& item) { got.push_back(item); };
    manager().getAlbumInfoWithIdentifier("77", json{{"key", "k1"}}, keep, nullptr);
    manager().getAlbumInfoWithIdentifier("uploader/album-slug", json::object(), keep, nullptr);
    manager().getSongInfoWithIdentifier("12", json::object(), keep, nullptr);
    manager().getSongInfoWithIdentifier("uploader/song-slug", json::object(), keep, nullptr);
    manager().getPlaylistInfo("curator/mix", json{{"key", "k2"}}, keep, nullptr);

    expectCall(0, "music/album/77", Params{{"key", "k1"}});
    EXPECT_EQ(call(1).path, "music/uploader/album-slug");
    EXPECT_EQ(call(2).path, "music/song/12");
    EXPECT_EQ(call(3).path, "music/uploader/song-slug");
    expectCall(4, "playlist/curator/mix", Params{{"key", "k2"}});

    auto album = songJson("77", "An album");
    album["type"] = "album";
    album["tracks"] = json::array({{{"song_id", "771"}, {"title", "One"}}});
    answer(0, 200, json{{"results", album}});
    answer(2, 200, json{{"results", restrictedSongJson("12")}});
    answer(4, 200, json{{"results", playlistJson("5")}});
    answer(1, 200, json{{"results", "not an item"}});

    ASSERT_EQ(got.size(), 4u);
    EXPECT_EQ(got[0]->itemID, "77");
    EXPECT_EQ(idsOf(got[0]->tracks), std::vector<std::string>{"771"});
    EXPECT_EQ(got[1]->itemID, "12");
    EXPECT_TRUE(got[1]->georestricted) << "the screen tells why a restricted song won't play";
    EXPECT_TRUE(got[2]->isPlaylist);
    EXPECT_EQ(got[3], nullptr);
}

TEST_F(TBDataManagerOperationsTest, HostileIdentifiersStayInsideTheirPlaceInThePath) {
    manager().getSongInfoWithIdentifier("../../admin", json::object(), nullptr, nullptr);
    manager().getArtistInfo("a?b#c d", nullptr, nullptr);
    manager().getPlaylistsForTag("Hip Hop/..", 0, nullptr, nullptr);

    EXPECT_EQ(call(0).url, std::string(kLiveBase) + "music/%2E%2E/%2E%2E/admin");
    EXPECT_EQ(call(1).url, std::string(kLiveBase) + "artist/a%3Fb%23c%20d");
    EXPECT_EQ(call(2).url, std::string(kLiveBase) + "tags/Hip%20Hop%2F../page/1")
        << "a tag is one segment";
}

TEST_F(TBDataManagerOperationsTest, CategoriesAndSuggestionsHandOverTheirResultsAsTheyCame) {
    json categories, suggestions;
    manager().getPlaylistCategoriesWithSuccess(
        [&](const JSON& results) { categories = results.raw(); }, nullptr);
    manager().searchAutosuggest("dra", [&](const JSON& results) { suggestions = results.raw(); });

    expectCall(0, "tags/page/1", Params{{"include_playlists", "no"}});
    expectCall(1, "search_autosuggest", Params{{"q", "dra"}});

    answer(0, 200, json{{"results", {"Chill", 3, "Workout"}}});
    answer(1, 200, json{{"results", {"drake", "drama"}}});
    EXPECT_EQ(categories, (json{"Chill", 3, "Workout"}));
    EXPECT_EQ(suggestions, (json{"drake", "drama"}));
}

TEST_F(TBDataManagerOperationsTest, PlaylistsOfATagPageInThePathExceptTrending) {
    manager().getPlaylistsForTag("Trending", 0, nullptr, nullptr);
    manager().getPlaylistsForTag("Chill", 1, nullptr, nullptr);

    expectCall(0, "playlist/trending", Params{{"page", "1"}});
    expectCall(1, "tags/Chill/page/2");
}

TEST_F(TBDataManagerOperationsTest, SearchSendsItsFiltersOnlyWhenSet) {
    manager().search("drake", "songs", "popular", false, "", 0, nullptr, nullptr);
    manager().search("drake", "albums", "recent", true, "rap", 3, nullptr, nullptr);
    manager().searchUserAccount("mine", "playlists", 1, nullptr, nullptr);

    expectCall(0, "search",
               Params{{"q", "drake"}, {"show", "songs"}, {"sort", "popular"}, {"page", "1"}});
    EXPECT_EQ(call(1).params, (Params{{"q", "drake"},
                                      {"show", "albums"},
                                      {"sort", "recent"},
                                      {"page", "4"},
                                      {"verified", "on"},
                                      {"genre", "rap"}}));
    expectCall(2, "user/search", Params{{"q", "mine"}, {"show", "playlists"}, {"page", "2"}});
}

std::vector<std::string> rowNames(const std::vector<TBSearchRow>& rows) {
    std::vector<std::string> names;
    for (const auto& row : rows) {
        if (const auto* item = std::get_if<ItemPtr>(&row)) {
            names.push_back("item " + (*item)->itemID.value_or("") +
                            ((*item)->verifiedSearchResult ? " verified" : ""));
        } else {
            const auto& artist = std::get<ArtistPtr>(row);
            names.push_back("artist " + artist->artistId.value_or("") +
                            (artist->verifiedSearchResult ? " verified" : ""));
        }
    }
    return names;
}

TEST_F(TBDataManagerOperationsTest, MusicSearchPutsTheVerifiedHitsFirst) {
    std::vector<TBSearchRow> rows;
    bool related = false;
    manager().search(
        "q", "music", "relevance", false, "", 0,
        [&](const std::vector<TBSearchRow>& found, bool isRelated) {
            rows = found;
            related = isRelated;
        },
        nullptr);
    auto body = resultsOf({songJson("1"), restrictedSongJson("2")});
    body["related"] = 1;
    body["verified_artist"] = artistJson("a2", "verified");
    body["tastemaker_artist"] = artistJson("a1", "taste");
    body["verified_playlist"] = playlistJson("p1");
    body["tastemaker_playlist"] = nullptr;
    answer(0, 200, body);

    EXPECT_THAT(rowNames(rows), ElementsAre("artist a1 verified", "artist a2 verified",
                                            "item p1 verified", "item 1"));
    EXPECT_TRUE(related);
}

TEST_F(TBDataManagerOperationsTest, ArtistSearchGivesAccounts) {
    std::vector<TBSearchRow> rows;
    manager().search(
        "q", "artists", "relevance", false, "", 0,
        [&](const std::vector<TBSearchRow>& found, bool) { rows = found; }, nullptr);
    auto body = resultsOf({artistJson("a1", "one"), artistJson("a2", "two")});
    body["related"] = 1;
    answer(0, 200, body);

    EXPECT_THAT(rowNames(rows), ElementsAre("artist a1", "artist a2"));
}

TEST_F(TBDataManagerOperationsTest, AccountListsAskTheirPathsWithTheirPaging) {
    ListOutcome uploads, following;
    manager().getArtistInfo("some-one", nullptr, nullptr);
    manager().getArtistUploads("some-one", 0, false, itemsInto(uploads), nullptr);
    manager().getArtistFavorites("some-one", "songs", 1, true, nullptr, nullptr);
    manager().getArtistPlaylists("some-one", 2, nullptr, nullptr);
    manager().getArtistFollowing("some-one", std::nullopt, artistsInto(following), nullptr);
    manager().getArtistFollowers("some-one", std::string("t2"), nullptr, nullptr);
    manager().getSuggestedFollows(0, nullptr, nullptr);
    manager().getMyFeedAtPage(0, false, nullptr, nullptr);
    manager().getMyFeedAtPage(1, true, nullptr, nullptr);
    manager().getHighlightsForSlug("some-one", false, nullptr, nullptr);

    expectCall(0, "artist/some-one");
    expectCall(1, "artist/some-one/uploads", Params{{"page", "1"}});
    expectCall(2, "artist/some-one/favorites", Params{{"show", "songs"}, {"page", "2"}});
    expectCall(3, "artist/some-one/playlists", Params{{"page", "3"}});
    expectCall(4, "artist/some-one/following");
    expectCall(5, "artist/some-one/follows", Params{{"paging_token", "t2"}});
    expectCall(6, "user/follow", Params{{"page", "1"}});
    expectCall(7, "user/feed", Params{{"page", "1"}});
    EXPECT_EQ(call(8).params, (Params{{"page", "2"}, {"only_uploads", "1"}}));
    EXPECT_EQ(call(9).path, "artist/some-one/pinned");

    answer(1, 200, resultsOf({songJson("1"), restrictedSongJson("2")}));
    EXPECT_THAT(idsOf(uploads.items), ElementsAre("1", "2")) << "the caller chose to keep them";
    auto followers = resultsOf({artistJson("7", "seven"), json{{"name", "no id"}}});
    followers["paging_token"] = "t3";
    answer(4, 200, followers);
    ASSERT_EQ(following.successes, 1);
    ASSERT_FALSE(following.artists.empty());
    EXPECT_EQ(following.artists[0]->urlSlug, "seven");
    EXPECT_EQ(following.pagingToken, "t3");
}

TEST_F(TBDataManagerOperationsTest, ArtistInfoMapsTheResultsDictionary) {
    ArtistPtr artist;
    int calls = 0;
    manager().getArtistInfo(
        "seven",
        [&](const ArtistPtr& found) {
            ++calls;
            artist = found;
        },
        nullptr);
    answer(0, 200, json{{"results", artistJson("7", "seven")}});
    ASSERT_EQ(calls, 1);
    ASSERT_NE(artist, nullptr);
    EXPECT_EQ(artist->artistId, "7");
    EXPECT_TRUE(artist->verified);
}

TEST_F(TBDataManagerOperationsTest, NotificationsAskUnseenOnlyUnlessAggregated) {
    std::vector<TBNotification> got;
    std::optional<std::int64_t> unseen;
    std::optional<std::string> token;
    manager().getNotifications(
        std::nullopt, true,
        [&](const std::vector<TBNotification>& notifications,
            const std::optional<std::int64_t>& count, const std::optional<std::string>& next) {
            got = notifications;
            unseen = count;
            token = next;
        },
        nullptr);
    manager().getNotifications(std::string("p2"), false, nullptr, nullptr);
    manager().markNotificationsAsSeen();

    expectCall(0, "user/native-notifications");
    EXPECT_EQ(call(1).params, (Params{{"paging_token", "p2"}, {"only_unseen", "1"}}));
    EXPECT_EQ(call(2).method, "POST");
    expectCall(2, "user/native-notifications/seen", Params{{"for_all", "true"}});

    answer(0, 200,
           json{{"results",
                 {{{"verb", "follow"}, {"actor", artistJson("1", "one")}},
                  {{"verb", "dance"}, {"actor", artistJson("2", "two")}}}},
                {"counters", {{"unseen", "4"}}},
                {"paging_token", "p3"}});
    ASSERT_EQ(got.size(), 1u) << "an unknown verb is dropped";
    EXPECT_EQ(unseen, 4);
    EXPECT_EQ(token, "p3");
}

TEST_F(TBDataManagerOperationsTest, NotificationsWithoutAListFailWithTheEmptyDictionary) {
    ListOutcome outcome;
    std::vector<std::optional<std::int64_t>> counts;
    const auto keepCount = [&](const std::vector<TBNotification>&,
                               const std::optional<std::int64_t>& count,
                               const std::optional<std::string>&) { counts.push_back(count); };
    manager().getNotifications(std::nullopt, true, keepCount, failureInto(outcome));
    manager().getNotifications(std::nullopt, true, keepCount, nullptr);
    answer(0, 200, json{{"results", {{"verb", "follow"}}}});
    EXPECT_TRUE(counts.empty());
    ASSERT_EQ(outcome.failures, 1);
    EXPECT_TRUE(outcome.failure->isEmpty);

    answer(1, 200, json{{"results", json::array()}, {"counters", {{"unseen", nullptr}}}});
    EXPECT_EQ(counts, (std::vector<std::optional<std::int64_t>>{std::nullopt}))
        << "a null counter is no count";
}

TEST_F(TBDataManagerOperationsTest, ForgotPasswordFailsWithTheServicesWordsForTheField) {
    std::vector<std::string> messages;
    int successes = 0;
    for (int i = 0; i < 4; ++i) {
        manager().forgotPassword(
            "me@example.com", [&] { ++successes; },
            [&](const std::string& message) { messages.push_back(message); });
    }
    EXPECT_EQ(call(0).method, "POST");
    expectCall(0, "user/forgot-password", Params{{"email", "me@example.com"}});

    answer(0, 404,
           json{{"message", "Unknown email"},
                {"errors", {{"email", {"We couldn't find that account", "Try again"}}}}});
    answer(1, 404, json{{"errors", {{"keyNotFound", {{"email", {"No such email"}}}}}}});
    answer(2, 500, std::string("<html>oops</html>"));
    answer(3, 200, json{{"message", "Check your email"}});

    EXPECT_THAT(messages,
                ElementsAre("We couldn't find that account.  Try again", "No such email", ""));
    EXPECT_EQ(successes, 1);
}

TEST_F(TBDataManagerOperationsTest, MusicAvailabilityKeepsTextAndNumbersOfTheAnswer) {
    std::vector<std::string> gone;
    ListOutcome outcome;
    manager().checkMusicAvailability(
        {"1", "22", "333"}, [&](const std::vector<std::string>& ids) { gone = ids; }, nullptr);
    manager().checkMusicAvailability(
        {"4"}, [&](const std::vector<std::string>&) { ADD_FAILURE() << "not a list"; },
        failureInto(outcome));

    EXPECT_EQ(call(0).method, "POST");
    expectCall(0, "music/status", Params{{"music_id", "1,22,333"}});

    answer(0, 200, json::parse(R"(["1", 22, null, {"id": 5}, [6], true, 7.5])"));
    EXPECT_THAT(gone, ElementsAre("1", "22", "7.5"));

    answer(1, 200, json{{"results", {"4"}}});
    ASSERT_EQ(outcome.failures, 1);
    EXPECT_TRUE(outcome.failure->isEmpty);
}

TEST_F(TBDataManagerOperationsTest, NowPlayingPagesRepeatTheCallOfTheList) {
    const NextPageData list = manager().getRecent("pop", 0, nullptr, nullptr);
    NextPageData next = list;
    next.nextPage();
    manager().getMusicFromNowPlaying(next, nullptr, nullptr);

    expectCall(1, "music/pop/recent", Params{{"page", "2"}});

    ListOutcome outcome;
    manager().getMusicFromNowPlaying(NextPageData(), itemsInto(outcome), failureInto(outcome));
    platform.queue.runUntilIdle();
    EXPECT_EQ(sentCount(), 2u) << "a page call without a path is not sent";
    EXPECT_EQ(outcome.failures, 1);
}

}  // namespace
}  // namespace tb::test
