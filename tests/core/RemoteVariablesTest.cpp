#include <functional>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "core/RemoteVariableKeys.h"
#include "core/RemoteVariables.h"
#include "core/TBLogger.h"
#include "platform/Log.h"
#include "platform/ManualQueue.h"
#include "platform/RecordedMixpanelExperiments.h"
#include "support/Recorders.h"
#include "support/ScriptedRemoteConfig.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using json = nlohmann::json;
using Status = RemoteConfigFetchStatus;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::SizeIs;
namespace Keys = RemoteVariableKeys;

// RemoteVariables over a scripted store, with the developer console captured.
class RemoteVariablesTest : public ::testing::Test {
  protected:
    RemoteVariablesTest() {
        previousSink_ = setLogSink([this](std::string_view line) { lines.emplace_back(line); });
    }
    ~RemoteVariablesTest() override { setLogSink(previousSink_); }

    // One combined fetch that the store answers with success and `values`.
    void fetchSucceeding(const std::map<std::string, std::string>& values) {
        variables.fetch();
        store.answerFetch(Status::Success, std::nullopt, values);
        queue.runUntilIdle();
    }

    ManualQueue queue;
    test::ScriptedRemoteConfig store;
    test::RecordingExternalSdks sdks;
    RecordedMixpanelExperiments experiments{sdks, queue};
    TBLogger logger;
    RemoteVariables variables{store, experiments, queue, logger};
    std::vector<std::string> lines;

  private:
    LogSink previousSink_;
};

struct ReadCase {
    std::string name;
    std::map<std::string, std::string> sent;  // key -> JSON text the service sent
    std::function<json(const RemoteVariables&)> read;
    json expected;
};

class RemoteVariablesReadTest : public RemoteVariablesTest,
                                public ::testing::WithParamInterface<ReadCase> {};

TEST_P(RemoteVariablesReadTest, ReadsTheValueInForceByItsRule) {
    fetchSucceeding(GetParam().sent);
    EXPECT_EQ(GetParam().read(variables), GetParam().expected);
}

const auto interstitialTiming = [](const RemoteVariables& v) {
    return json(v.interstitialTiming());
};
const auto searchTrending = [](const RemoteVariables& v) { return json(v.searchTrending()); };
const auto tester = [](const RemoteVariables& v) { return json(v.boolValue(Keys::tester)); };
const auto deeplink = [](const RemoteVariables& v) {
    return json(v.stringValue(Keys::deeplinkFirstLoad));
};

INSTANTIATE_TEST_SUITE_P(
    Rules,
    RemoteVariablesReadTest,
    ::testing::Values(
        ReadCase{"AbsentNumberIsItsDefault", {}, interstitialTiming, 275},
        ReadCase{"AbsentStringIsItsDefault", {}, deeplink, "music_trending"},
        ReadCase{"SentNumber",
                 {{Keys::adBannerTiming, "45"}},
                 [](const RemoteVariables& v) { return json(v.bannerTiming()); },
                 45},
        ReadCase{"FractionIsCut", {{Keys::adInterstitialTiming, "12.9"}}, interstitialTiming, 12},
        ReadCase{"TextForANumberIsZero",
                 {{Keys::adInterstitialTiming, R"("soon")"}},
                 interstitialTiming,
                 0},
        ReadCase{"BooleanForANumberIsZero",
                 {{Keys::adInterstitialTiming, "true"}},
                 interstitialTiming,
                 0},
        ReadCase{"TrendingTerms",
                 {{Keys::searchTrending, R"("[\"jazz\",\"drill\"]")"}},
                 searchTrending,
                 json::array({"jazz", "drill"})},
        ReadCase{"TrendingObjectIsEmpty",
                 {{Keys::searchTrending, R"("{\"a\":[\"x\"]}")"}},
                 searchTrending,
                 json::array()},
        ReadCase{"TrendingBrokenTextIsEmpty",
                 {{Keys::searchTrending, R"("[\"jazz\"")"}},
                 searchTrending,
                 json::array()},
        ReadCase{"TrendingSentAsAnArray",
                 {{Keys::searchTrending, R"(["soul"])"}},
                 searchTrending,
                 json::array({"soul"})},
        ReadCase{"TrueBoolean", {{Keys::tester, "true"}}, tester, true},
        ReadCase{"YesText", {{Keys::tester, R"("YES")"}}, tester, true},
        ReadCase{"NumberAsText", {{Keys::deeplinkFirstLoad, "5"}}, deeplink, "5"}),
    [](const auto& test) { return test.param.name; });

class RemoteVariablesStatusTest : public RemoteVariablesTest,
                                  public ::testing::WithParamInterface<Status> {};

TEST_P(RemoteVariablesStatusTest, LogsTheOutcomeAndActivatesOnlyOnSuccess) {
    fetchSucceeding({{Keys::adBannerTiming, "40"}});
    lines.clear();

    auto fetched = variables.firebase().fetch();
    store.answerFetch(GetParam(), std::nullopt, {{Keys::adBannerTiming, "99"}});
    queue.runUntilIdle();

    const bool success = GetParam() == Status::Success;
    EXPECT_TRUE(fetched.result()->isFulfilled());
    EXPECT_THAT(lines, ElementsAre(success ? "FIRRemoteConfig completed: true"
                                           : "FIRRemoteConfig completed: false"));
    EXPECT_EQ(variables.bannerTiming(), success ? 99 : 40);
}

INSTANTIATE_TEST_SUITE_P(
    Statuses,
    RemoteVariablesStatusTest,
    ::testing::Values(Status::Success, Status::Failure, Status::NoFetchYet, Status::Throttled));

struct FailureCase {
    std::string name;
    std::optional<Error> fetchError;
    std::optional<Error> activationError;
};

class RemoteVariablesJoinTest : public RemoteVariablesTest,
                                public ::testing::WithParamInterface<FailureCase> {};

TEST_P(RemoteVariablesJoinTest, TheJoinedFetchNeverFailsAndAFailedSourceChangesNothing) {
    fetchSucceeding({{Keys::adBannerTiming, "40"}});
    store.activationError = GetParam().activationError;

    const auto answer = [&] {
        store.answerFetch(GetParam().fetchError ? Status::Failure : Status::Success,
                          GetParam().fetchError, {{Keys::adBannerTiming, "99"}});
    };
    auto firebase = variables.firebase().fetch();
    answer();
    auto joined = variables.fetch();
    answer();
    queue.runUntilIdle();

    EXPECT_FALSE(firebase.result()->isFulfilled());
    EXPECT_TRUE(joined.result()->isFulfilled());
    EXPECT_EQ(variables.bannerTiming(), 40);
    // The analytics side took part all the same: its one tweak, then the join.
    ASSERT_THAT(sdks.starts, SizeIs(4));
    EXPECT_EQ(sdks.starts[2].library, "MixpanelTweaks.setTweaks");
    EXPECT_EQ(sdks.starts[2].settings,
              (std::map<std::string, std::string>{{Keys::onboardingEnabled, "false"}}));
    EXPECT_EQ(sdks.starts[3].library, "Mixpanel.joinExperiments");
}

INSTANTIATE_TEST_SUITE_P(
    Failures,
    RemoteVariablesJoinTest,
    ::testing::Values(FailureCase{"FetchError", Error{"RemoteConfig", -1009, "offline", {}}, {}},
                      FailureCase{"ActivationError", {}, Error{"RemoteConfig", 256, "disk", {}}}),
    [](const auto& test) { return test.param.name; });

TEST_F(RemoteVariablesTest, AFreshInstallWaitsForTheFetchAtMostFiveSeconds) {
    auto launched = variables.fetchAtLaunch(true, 5.0);
    queue.advanceBy(4.9);
    EXPECT_TRUE(launched.isPending());
    queue.advanceBy(0.1);
    EXPECT_FALSE(launched.isPending());
    EXPECT_FALSE(variables.boolValue(Keys::onboardingEnabled));

    // A fetch that ends after the wait still puts its values in force.
    store.answerFetch(Status::Success, std::nullopt, {{Keys::onboardingEnabled, "true"}});
    queue.runUntilIdle();
    EXPECT_TRUE(variables.boolValue(Keys::onboardingEnabled));
}

TEST_F(RemoteVariablesTest, ALaterLaunchStartsTheFetchAndGoesOnAtOnce) {
    auto launched = variables.fetchAtLaunch(false, 5.0);
    queue.runUntilIdle();
    EXPECT_FALSE(launched.isPending());
    EXPECT_THAT(store.pending, SizeIs(1));
}

TEST(RemoteVariablesSharedTest, TheSharedInstanceIsTheContexts) {
    test::TestPlatform platform;
    EXPECT_EQ(&RemoteVariables::current(), &platform.context().remoteVariables());
}

}  // namespace
}  // namespace tb
