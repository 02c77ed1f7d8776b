// Refreshing an offline item's web address from the service: which call each kind makes,
// and what the item takes from the answer.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "api/ItemInfoRefresher.h"
#include "api/TBDataManager.h"
#include "support/DaoTestSupport.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

using nlohmann::json;
using Paths = std::vector<std::string>;

json albumAnswer(const std::string& id, const std::vector<std::string>& trackIDs) {
    json tracks = json::array();
    for (const auto& trackID : trackIDs) {
        tracks.push_back({{"song_id", trackID},
                          {"title", "Track " + trackID},
                          {"streaming_url", "https://stream.example/" + trackID},
                          {"url_slug", trackID + "-slug"}});
    }
    return {{"results",
             {{"id", id},
              {"type", "album"},
              {"title", "Album " + id},
              {"url_slug", id + "-slug"},
              {"uploader", {{"url_slug", "uploader-" + id}}},
              {"tracks", tracks}}}};
}

json songAnswer(const std::string& id) {
    return {{"results",
             {{"id", id},
              {"type", "song"},
              {"title", "Song " + id},
              {"streaming_url", "https://stream.example/" + id},
              {"url_slug", id + "-slug"},
              {"uploader", {{"url_slug", "uploader-" + id}}}}}};
}

class RefreshInfoTest : public DaoTest {
  protected:
    struct Outcome {
        int successes = 0;
        int failures = 0;
        ItemPtr result;
        std::optional<Error> error;
    };

    RefreshInfoTest() { TBDataManager::useProd(); }

    void serve(const std::string& path, const json& answer) {
        device.http.on("GET", path, 200, answer.dump());
    }

    // Refreshes `item`; `answer` (if any) runs before the queue does, to answer by hand.
    Outcome refresh(const ItemPtr& item, const std::function<void()>& answer = {}) {
        Outcome outcome;
        ItemInfoRefresher(device.context().dataManager())
            .refreshInfoFor(
                item,
                [&outcome](const ItemPtr& result) {
                    ++outcome.successes;
                    outcome.result = result;
                },
                [&outcome](const std::optional<Error>& error) {
                    ++outcome.failures;
                    outcome.error = error;
                });
        if (answer) {
            answer();
        }
        device.queue.runUntilIdle();
        return outcome;
    }

    // The service paths asked for so far, without the base URL and the query.
    Paths asked() {
        Paths paths;
        const std::string base = TBDataManager::baseURL();
        for (const auto& sent : device.http.sent()) {
            std::string url = sent->request.url.substr(0, sent->request.url.find('?'));
            paths.push_back(url.rfind(base, 0) == 0 ? url.substr(base.size()) : url);
        }
        return paths;
    }
};

TEST_F(RefreshInfoTest, AnAlbumTrackAsksForItsAlbumAndTakesItsOwnEntrysAddress) {
    serve("music/album/al", albumAnswer("al", {"t1", "t2", "t3"}));
    auto track = albumTrack("t2", "al");
    const auto outcome = refresh(track);

    EXPECT_EQ(asked(), Paths{"music/album/al"});
    ASSERT_EQ(outcome.successes, 1);
    EXPECT_EQ(outcome.failures, 0);
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->itemID, "al");  // the answer, not the track
    EXPECT_EQ(track->url, "https://stream.example/t2");
    EXPECT_EQ(track->uploaderSlug, "uploader-al");
    EXPECT_EQ(track->urlSlug, "al-slug");
}

TEST_F(RefreshInfoTest, ATrackMissingFromTheAnswerFailsWithoutAnErrorAndKeepsItsAddress) {
    serve("music/album/al", albumAnswer("al", {"t1", "t2"}));
    auto track = albumTrack("gone", "al");
    track->url = "https://stream.example/old";
    const auto outcome = refresh(track);

    EXPECT_EQ(outcome.successes, 0);
    ASSERT_EQ(outcome.failures, 1);
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_EQ(track->url, "https://stream.example/old");
    EXPECT_EQ(track->urlSlug, std::nullopt);
}

TEST_F(RefreshInfoTest, SongsAndPlaylistTracksAskForTheSongAndTakeItsAddress) {
    serve("music/song/s1", songAnswer("s1"));
    serve("music/song/p1", songAnswer("p1"));
    serve("music/song/both", songAnswer("both"));
    auto single = song("s1");
    auto listed = playlistTrack("p1", "pl");
    // The kinds are tested in a fixed order: song before album track.
    auto both = albumTrack("both", "al");
    both->isSong = true;

    for (const auto& item : {single, listed, both}) {
        const auto outcome = refresh(item);
        ASSERT_EQ(outcome.successes, 1) << *item->itemID;
        EXPECT_EQ(outcome.result->itemID, item->itemID);
        EXPECT_EQ(item->url, "https://stream.example/" + *item->itemID);
    }
    EXPECT_EQ(asked(), (Paths{"music/song/s1", "music/song/p1", "music/song/both"}));
    // Only the address is taken from a song's answer.
    EXPECT_EQ(single->urlSlug, std::nullopt);
}

TEST_F(RefreshInfoTest, AnAlbumEndsWithItsLastTracksValuesAndSucceedsWithItself) {
    serve("music/album/al", albumAnswer("al", {"t1", "t2", "t3"}));
    auto item = album("al", {});
    const auto outcome = refresh(item);

    EXPECT_EQ(asked(), Paths{"music/album/al"});
    ASSERT_EQ(outcome.successes, 1);
    EXPECT_EQ(outcome.result.get(), item.get());
    EXPECT_EQ(item->url, "https://stream.example/t3");
    EXPECT_EQ(item->uploaderSlug, "uploader-al");
    EXPECT_EQ(item->urlSlug, "al-slug");
}

TEST_F(RefreshInfoTest, AnAnswerWithoutTracksGivesItsOwnAddress) {
    serve("playlist/pl", json{{"results",
                               {{"id", "pl"},
                                {"type", "playlist"},
                                {"title", "Mix"},
                                {"url_slug", "mix"},
                                {"tracks", json::array()}}}});
    serve("music/album/empty", albumAnswer("empty", {}));
    auto list = playlist("pl", {});
    list->url = "https://stream.example/stale";
    auto bare = album("empty", {});

    const auto listOutcome = refresh(list);
    ASSERT_EQ(listOutcome.successes, 1);
    EXPECT_EQ(listOutcome.result->itemID, "pl");
    EXPECT_EQ(list->url, listOutcome.result->url);  // a playlist has none of its own

    const auto albumOutcome = refresh(bare);
    ASSERT_EQ(albumOutcome.successes, 1);
    EXPECT_NE(albumOutcome.result.get(), bare.get());
    EXPECT_EQ(asked(), (Paths{"playlist/pl", "music/album/empty"}));
}

TEST_F(RefreshInfoTest, OtherKindsAskNothingAndAnswerNothing) {
    auto mine = playlist("mine", {});
    mine->isPlaylist = false;
    mine->isUserPlaylist = true;
    auto none = std::make_shared<Item>();
    none->itemID = "x";

    for (const auto& item : {mine, none}) {
        const auto outcome = refresh(item);
        EXPECT_EQ(outcome.successes + outcome.failures, 0);
    }
    EXPECT_EQ(device.http.count(), 0u);
}

TEST_F(RefreshInfoTest, AFailedRequestGoesToTheFailureBlockWithItsError) {
    auto item = song("s1");
    item->url = "https://stream.example/old";
    const auto outcome = refresh(item, [this] {
        ASSERT_EQ(device.http.count(), 1u);
        device.http.fail(0, URLError::kNotConnectedToInternet);
    });

    EXPECT_EQ(outcome.successes, 0);
    ASSERT_EQ(outcome.failures, 1);
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->code, URLError::kNotConnectedToInternet);
    EXPECT_EQ(item->url, "https://stream.example/old");
}

}  // namespace
}  // namespace tb::test
