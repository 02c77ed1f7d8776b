// Featured spots, the walk over every page of a list, and the highlight writes.

#include "CatalogueFixture.h"
#include "core/TBConstants.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBFeaturedSpot.h"
#include "platform/JSON.h"
#include "platform/NotificationCenter.h"

#include <gmock/gmock.h>

namespace tb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using json = nlohmann::json;

class FeaturedSpotsTest : public CatalogueTest {
  protected:
    FeaturedSpotsTest() {
        platform.context().notificationCenter().addObserver(
            TBConstants::TBGlobalNotifications().featuredPostsPulled, nullptr,
            [this](const Notification&) { ++pulled; });
    }

    json spotsAnswer() const {
        return resultsOf({
            {{"type", "featured"}, {"ref", songJson("1", "One")}},
            {{"type", "new"}, {"ref", restrictedSongJson("2")}},
            {{"type", "curated"}, {"ref", playlistJson("3")}},
            {{"type", "artist"}, {"ref", artistJson("4", "four")}},
            {{"type", "broken"}, {"ref", {{"type", "album"}}}},
        });
    }

    int pulled = 0;
};

TEST_F(FeaturedSpotsTest, KeepsTheSpotsThatHoldSomethingAndPicksOneAtRandom) {
    manager().getFeaturedMusic();
    EXPECT_EQ(call(0).method, "GET");
    EXPECT_EQ(call(0).path, "featured");
    platform.random.script = {2};  // after the request's nonce
    answer(0, 200, spotsAnswer());

    const auto& spots = manager().featuredSpots();
    ASSERT_EQ(spots.size(), 3u) << "a restricted song and an empty ref give no spot";
    EXPECT_EQ(spots[0].item->itemID, "1");
    EXPECT_EQ(spots[1].item->itemID, "3");
    EXPECT_EQ(spots[2].artist->artistId, "4");
    EXPECT_EQ(platform.random.upperBoundsAsked.back(), 3u);
    ASSERT_TRUE(manager().featuredSpot());
    ASSERT_TRUE(manager().featuredSpot()->artist);
    EXPECT_EQ(manager().featuredSpot()->artist->artistId, "4");
    EXPECT_EQ(pulled, 1);
}

TEST_F(FeaturedSpotsTest, AnEmptyOrFailedAnswerKeepsTheLastPick) {
    manager().getFeaturedMusic();
    platform.random.script = {0};
    answer(0, 200, spotsAnswer());
    ASSERT_TRUE(manager().featuredSpot());

    manager().getFeaturedMusic();
    answer(1, 200, json{{"results", json::array()}});
    manager().getFeaturedMusic();
    answer(2, 503, std::string());
    manager().getFeaturedMusic();
    answer(3, 200, json{{"results", {{{"type", "x"}, {"ref", restrictedSongJson("9")}}}}});

    EXPECT_EQ(manager().featuredSpots().size(), 3u);
    ASSERT_TRUE(manager().featuredSpot());
    ASSERT_TRUE(manager().featuredSpot()->item);
    EXPECT_EQ(manager().featuredSpot()->item->itemID, "1");
    EXPECT_EQ(pulled, 1);
}

class AllMusicPagesTest : public CatalogueTest {
  protected:
    // Answers every page request in turn with the next body, until the list is used up.
    void answerPages(const std::vector<std::pair<int, json>>& pages) {
        for (std::size_t index = 0; index < pages.size(); ++index) {
            platform.queue.runUntilIdle();
            ASSERT_EQ(sentCount(), index + 1) << "page " << index + 1 << " was not asked for";
            answer(index, pages[index].first, pages[index].second);
        }
    }

    NextPageData playlistPage() const {
        return NextPageData(std::string("artist/dj/uploads"), json{{"page", "7"}, {"show", "x"}});
    }

    std::optional<std::vector<ItemPtr>> all;
};

TEST_F(AllMusicPagesTest, AsksPageAfterPageUntilAnEmptyOne) {
    manager().getAllMusicPages(
        playlistPage(), [this](const std::vector<ItemPtr>& items) { all = items; },
        [](const TBFailureInfo&) { ADD_FAILURE() << "the walk never fails"; });
    answerPages({{200, resultsOf({songJson("1"), songJson("2")})},
                 {200, resultsOf({songJson("3")})},
                 {200, resultsOf({songJson("4"), restrictedSongJson("5")})},
                 {200, resultsOf({})}});

    ASSERT_TRUE(all);
    EXPECT_THAT(idsOf(*all), ElementsAre("1", "2", "3", "4"));
    EXPECT_EQ(sentCount(), 4u);
    for (std::size_t index = 0; index < 4; ++index) {
        EXPECT_EQ(call(index).path, "artist/dj/uploads");
        EXPECT_EQ(call(index).params.at("page"), std::to_string(index + 1));
        EXPECT_EQ(call(index).params.at("show"), "x");
    }
}

// A failed page and an answer without a list both end the walk with what came before.
TEST_F(AllMusicPagesTest, AFailedPageOrAnAnswerWithoutAListEndsWithWhatWasCollected) {
    const std::vector<std::pair<int, json>> endings = {{500, json::object()},
                                                       {200, json{{"results", songJson("9")}}}};
    for (const auto& ending : endings) {
        SCOPED_TRACE(ending.second.dump());
        all.reset();
        const std::size_t before = sentCount();
        manager().getAllMusicPages(
            playlistPage(), [this](const std::vector<ItemPtr>& items) { all = items; }, nullptr);
        platform.queue.runUntilIdle();
        answer(before, 200, resultsOf({songJson("1")}));
        answer(before + 1, 200, resultsOf({songJson("2")}));
        answer(before + 2, ending.first, ending.second);
        ASSERT_TRUE(all);
        EXPECT_THAT(idsOf(*all), ElementsAre("1", "2"));
        EXPECT_EQ(sentCount(), before + 3);
    }
}

class HighlightsTest : public CatalogueTest {
  protected:
    HighlightsTest() {
        session.signedIn = true;
        session.slug = "me";
        auto track = albumTrack("12", "al");
        track->type = "album";  // a track is pinned as a song whatever its type says
        session.current = {song("10"), playlist("11", {}), track};
    }

    json entitiesOf(std::size_t index) const {
        return json::parse(call(index).params.at("entities"));
    }
};

TEST_F(HighlightsTest, AddSendsTheNewEntityFirstThenTheCurrentList) {
    json answered;
    manager().addToHighlights(
        album("20", {}), [&](const JSON& response) { answered = response.raw(); }, nullptr);
    EXPECT_EQ(call(0).method, "POST");
    EXPECT_EQ(call(0).url, std::string(kLiveBase) + "artist/me/pinned");
    EXPECT_EQ(entitiesOf(0), json::parse(R"([{"kind":"album","id":"20"},{"kind":"song","id":"10"},
        {"kind":"playlist","id":"11"},{"kind":"song","id":"12"}])"));

    answer(0, 200, json{{"results", json::array()}});
    EXPECT_EQ(answered, (json{{"results", json::array()}}));
}

TEST_F(HighlightsTest, RemoveAndReorderSendTheListAsItShouldBe) {
    manager().removeFromHighlights(playlist("11", {}), nullptr, nullptr);
    manager().reorderHighlights({playlist("11", {}), song("10")}, nullptr, nullptr);

    EXPECT_EQ(call(0).method, "DELETE");
    EXPECT_EQ(call(0).path, "artist/me/pinned");
    EXPECT_EQ(entitiesOf(0),
              json::parse(R"([{"kind":"song","id":"10"},{"kind":"song","id":"12"}])"));
    EXPECT_EQ(call(1).method, "PUT");
    EXPECT_EQ(entitiesOf(1), json::parse(R"([{"kind":"playlist","id":"11","position":0},
        {"kind":"song","id":"10","position":1}])"));
}

TEST_F(HighlightsTest, WritesFailStraightAwayWithNoRefreshReportOrToast) {
    ListOutcome outcome;
    manager().addToHighlights(song("20"), nullptr, failureInto(outcome));
    answer(0, 401, std::string(R"({"errorcode":401})"));

    ASSERT_EQ(outcome.failures, 1);
    EXPECT_EQ(outcome.failure->statusCode, 401);
    EXPECT_THAT(session.refreshes, IsEmpty());
    EXPECT_THAT(platform.errors.records, IsEmpty());

    session.slug.reset();
    manager().removeFromHighlights(song("10"), nullptr, failureInto(outcome));
    platform.queue.runUntilIdle();
    EXPECT_EQ(outcome.failures, 2);
    EXPECT_TRUE(outcome.failure->isEmpty);
    EXPECT_EQ(sentCount(), 1u) << "nobody's list to write without a slug";
}

}  // namespace
}  // namespace tb::test
