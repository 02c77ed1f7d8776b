// The generic core: how answers are mapped and how every failure is taken.

#include "CatalogueFixture.h"
#include "core/TBConstants.h"
#include "core/TBLocalization.h"
#include "model/Item.h"
#include "platform/JSON.h"

#include <gmock/gmock.h>

namespace tb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using json = nlohmann::json;

class TBCatalogueFailureTest : public CatalogueTest {
  protected:
    ListOutcome outcome;

    void askTrending() {
        manager().getTrending("all", 0, itemsInto(outcome), failureInto(outcome));
    }
    std::size_t offlineToasts() const {
        std::size_t count = 0;
        for (const auto& toast : platform.ui.toasts) {
            count += toast.text == TBLocalization::localizedString("toast_offline");
        }
        return count;
    }
};

// A results object, an answer of another shape, and a paging token that is no text: each
// is handed over raw, with no items and no token.
TEST_F(TBCatalogueFailureTest, AnswersWithoutItemsAreHandedOverRawAndWithoutAToken) {
    const json bodies[] = {json{{"results", songJson("1")}, {"paging_token", "t"}}, json{"x", 1},
                           json{{"results", json::array()}, {"paging_token", 5}}};
    for (std::size_t i = 0; i < std::size(bodies); ++i) {
        ListOutcome got;
        manager().dataForService("music/song/1", json::object(), true, itemsInto(got),
                                 failureInto(got));
        answer(i, 200, bodies[i]);
        ASSERT_EQ(got.successes, 1) << i;
        EXPECT_THAT(got.items, IsEmpty()) << i;
        EXPECT_EQ(got.pagingToken, std::nullopt) << i;
        EXPECT_EQ(got.response, bodies[i]) << i;
    }
}

// One element of a list that the service mangled costs that element's value, never the
// list: a number too large for a double and bytes that are no UTF-8.
TEST_F(TBCatalogueFailureTest, AMangledValueInOneElementCostsOnlyThatValue) {
    json huge = songJson("1", "Huge");
    huge["duration"] = "@HUGE@";
    json playlist = playlistJson("3");
    playlist["stats"] = {{"plays", "@HUGE@"}};
    std::string body = resultsOf({huge, songJson("2", "@BAD@"), playlist}).dump();
    const auto replace = [&body](const std::string& mark, const std::string& with) {
        for (auto at = body.find(mark); at != std::string::npos; at = body.find(mark)) {
            body.replace(at, mark.size(), with);
        }
    };
    replace("\"@HUGE@\"", "1e400");
    replace("@BAD@", "Bad \xff\xfe Title");

    askTrending();
    answer(0, 200, body);

    ASSERT_EQ(outcome.failures, 0);
    ASSERT_EQ(outcome.successes, 1);
    ASSERT_THAT(idsOf(outcome.items), ElementsAre("1", "2", "3"));
    EXPECT_EQ(outcome.items[0]->duration, 0);  // no whole number: 0, as any such text
    EXPECT_EQ(outcome.items[0]->title, "Huge");
    EXPECT_EQ(outcome.items[1]->title, "Bad \xef\xbf\xbd\xef\xbf\xbd Title");  // U+FFFD each
    EXPECT_EQ(outcome.items[1]->duration, 185);
    EXPECT_EQ(outcome.items[2]->plays, "1.7976931348623157e+308");
    EXPECT_EQ(outcome.items[2]->items.size(), 2u);
}

TEST_F(TBCatalogueFailureTest, ANullAnswerFailsWithTheEmptyDictionaryUnlessNobodyListens) {
    askTrending();
    answer(0, 200, std::string());
    ASSERT_EQ(outcome.failures, 1);
    EXPECT_TRUE(outcome.failure->isEmpty);
    EXPECT_EQ(outcome.successes, 0);

    ListOutcome quiet;
    manager().getTrending("all", 0, nullptr, failureInto(quiet));
    answer(1, 200, std::string("null"));
    EXPECT_EQ(quiet.failures, 0) << "without a success block nothing is done";
}

TEST_F(TBCatalogueFailureTest, AServerErrorIsRecordedAndHandedOverAsTheFailureDictionary) {
    askTrending();
    answer(0, 500, std::string(R"({"message":"boom"})"));

    ASSERT_EQ(outcome.failures, 1);
    const auto& failure = *outcome.failure;
    EXPECT_FALSE(failure.isEmpty);
    EXPECT_EQ(failure.statusCode, 500);
    EXPECT_EQ(failure.response, R"({"message":"boom"})");
    ASSERT_TRUE(failure.error);
    EXPECT_EQ(failure.error->code, URLError::kBadServerResponse);

    ASSERT_EQ(platform.errors.records.size(), 1u);
    EXPECT_EQ(platform.errors.records[0].error, *failure.error);
    EXPECT_EQ(platform.errors.records[0].additionalInfo,
              (ErrorInfo{{"Reachable", "true"}, {"TimedOut", "false"}}));
    EXPECT_EQ(offlineToasts(), 0u);
}

TEST_F(TBCatalogueFailureTest, ATimeOutShowsTheOfflineToastEvenWhenTheCallerShowsItsOwn) {
    manager().getTrending("all", 0, nullptr, [this](const TBFailureInfo& info) {
        EXPECT_EQ(info.statusCode, 0);
        EXPECT_EQ(info.response, "");
        platform.ui.showToast("Could not load", UIHost::ToastImage::Failure);
    });
    failTransfer(0, URLError::kTimedOut);

    EXPECT_EQ(offlineToasts(), 1u);
    ASSERT_EQ(platform.ui.toasts.size(), 2u);
    EXPECT_EQ(platform.ui.toasts[1].text, "Could not load");
    ASSERT_EQ(platform.errors.records.size(), 1u);
    EXPECT_EQ(platform.errors.records[0].additionalInfo.at("TimedOut"), "true");
}

TEST_F(TBCatalogueFailureTest, OfflineFailuresSayUnreachableAndToast) {
    platform.reachability.set(false);
    askTrending();
    failTransfer(0, URLError::kNotConnectedToInternet);

    EXPECT_EQ(offlineToasts(), 1u);
    EXPECT_EQ(platform.errors.records.at(0).additionalInfo,
              (ErrorInfo{{"Reachable", "false"}, {"TimedOut", "false"}}));
    EXPECT_EQ(outcome.failures, 1);
}

TEST_F(TBCatalogueFailureTest, ACancelledCallEndsInSilence) {
    askTrending();
    failTransfer(0, URLError::kCancelled);
    EXPECT_EQ(outcome.failures, 0);
    EXPECT_THAT(platform.errors.records, IsEmpty());
}

TEST_F(TBCatalogueFailureTest, A401WhileSignedOutIsAnOrdinaryFailure) {
    askTrending();
    answer(0, 401, std::string(R"({"errorcode":1000})"));

    ASSERT_EQ(outcome.failures, 1);
    EXPECT_EQ(outcome.failure->statusCode, 401);
    EXPECT_EQ(outcome.failure->errorcode(), "1000");
    EXPECT_THAT(session.refreshes, IsEmpty());
    EXPECT_EQ(platform.errors.records.size(), 1u);
}

TEST_F(TBCatalogueFailureTest, A401WhileSignedInRefreshesAndRepeatsTheSameCallOnce) {
    session.signedIn = true;
    manager().checkMusicAvailability(
        {"1", "2"},
        [this](const std::vector<std::string>& ids) {
            ++outcome.successes;
            EXPECT_THAT(ids, ElementsAre("2"));
        },
        failureInto(outcome));
    answer(0, 401, std::string("expired"));

    const auto& codes = TBConstants::TBCrashlyticsErrorCodes();
    ASSERT_EQ(platform.errors.records.size(), 2u);
    const auto& unauthorized = platform.errors.records[1];
    EXPECT_EQ(unauthorized.error.domain, "com.tunebrook");
    EXPECT_EQ(unauthorized.error.code, codes.unauthorized);
    EXPECT_EQ(
        unauthorized.additionalInfo,
        (ErrorInfo{{"url", std::string(kLiveBase) + "music/status"}, {"response", "expired"}}));
    ASSERT_EQ(session.refreshes.size(), 1u);
    EXPECT_EQ(sentCount(), 1u) << "nothing is repeated before the refresh ends";

    session.refreshes[0].success();
    platform.queue.runUntilIdle();
    ASSERT_EQ(sentCount(), 2u);
    EXPECT_EQ(call(1).method, "POST");
    EXPECT_EQ(call(1).path, "music/status");
    EXPECT_EQ(call(1).params, call(0).params);

    answer(1, 200, json{2});
    EXPECT_EQ(outcome.successes, 1);
    EXPECT_EQ(outcome.failures, 0);
}

TEST_F(TBCatalogueFailureTest, AFailedRepeatReachesNobody) {
    session.signedIn = true;
    askTrending();
    answer(0, 401, std::string());
    session.refreshes.at(0).success();
    platform.queue.runUntilIdle();
    answer(1, 401, std::string());

    EXPECT_EQ(outcome.successes, 0);
    EXPECT_EQ(outcome.failures, 0);
    EXPECT_EQ(session.refreshes.size(), 1u) << "the repeat is not refreshed again";
    EXPECT_EQ(sentCount(), 2u);
    EXPECT_EQ(platform.errors.records.size(), 2u);
}

TEST_F(TBCatalogueFailureTest, AFailedRefreshFailsWithTheEmptyDictionary) {
    session.signedIn = true;
    askTrending();
    answer(0, 401, std::string());
    session.refreshes.at(0).failure();
    platform.queue.runUntilIdle();

    ASSERT_EQ(outcome.failures, 1);
    EXPECT_TRUE(outcome.failure->isEmpty);
    EXPECT_EQ(sentCount(), 1u);
}

TEST_F(TBCatalogueFailureTest, AnswersAfterTheContextIsGoneAreDropped) {
    auto other = std::make_unique<TestPlatform>();
    bool called = false;
    TBDataManager::sharedManager().getTrending(
        "all", 0,
        [&](const std::vector<ItemPtr>&, const std::optional<std::string>&, const JSON&) {
            called = true;
        },
        nullptr);
    auto pending = other->http.sent().at(0);
    other.reset();
    // The transport outlived the app: its late answer must not touch what is gone.
    pending->completion(HttpResult{HttpResponse{200, {}, "{}", ""}, std::nullopt});
    EXPECT_FALSE(called);
}

}  // namespace
}  // namespace tb::test
