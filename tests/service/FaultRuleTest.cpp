#include <nlohmann/json.hpp>

#include "tunebrook-service/http/FaultInjector.h"
#include "tunebrook-service/http/FaultRule.h"

#include <gtest/gtest.h>

namespace tb::service {
namespace {

using Action = FaultRule::Action;

TEST(FaultRuleTest, ReadsTheCommandLineForm) {
    std::string error;
    auto status = FaultRule::parse("POST music/*/play=status:503,times=2,delay=100", error);
    ASSERT_TRUE(status) << error;
    EXPECT_EQ(status->method, "POST");
    EXPECT_EQ(status->pattern, "music/*/play");
    EXPECT_EQ(status->action, Action::status);
    EXPECT_EQ(status->status, 503);
    EXPECT_EQ(status->remaining, 2);
    EXPECT_EQ(status->delayMs, 100);

    auto cut = FaultRule::parse("/media/**=truncate:25%", error);
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->percent, 25);
    EXPECT_EQ(cut->bytes, -1);
    EXPECT_EQ(FaultRule::parse("search=truncate:4096", error)->bytes, 4096);

    auto drip = FaultRule::parse("search=drip:64:200", error);
    ASSERT_TRUE(drip);
    EXPECT_EQ(drip->chunkBytes, 64);
    EXPECT_EQ(drip->intervalMs, 200);
    EXPECT_EQ(FaultRule::parse("featured=reset", error)->action, Action::reset);
    EXPECT_EQ(FaultRule::parse("user/feed=hang:2000", error)->maxMs, 2000);
}

TEST(FaultRuleTest, RefusesWhatItCantRead) {
    std::string error;
    for (const char* text :
         {"", "search", "search=explode", "search=status:99", "search=status:abc",
          "search=truncate:100%", "search=delay", "search=status,times=x", "search=status,color=1",
          "a b c=status", "=status", "search=status:500,times=0"}) {
        EXPECT_FALSE(FaultRule::parse(text, error)) << text;
    }
    EXPECT_FALSE(
        FaultRule::fromJson({{"path", "x"}, {"action", "status"}, {"status", "500"}}, error));
    EXPECT_FALSE(FaultRule::fromJson({{"action", "status"}}, error));
    EXPECT_FALSE(FaultRule::fromJson(
        {{"path", "x"}, {"action", "status"}, {"status", 500}, {"times", 0}}, error));
    EXPECT_FALSE(FaultRule::fromJson(nlohmann::json::array(), error));
    auto json = FaultRule::fromJson(
        {{"path", "chart/**"}, {"action", "delay"}, {"delay_ms", 250}, {"times", 1}}, error);
    ASSERT_TRUE(json) << error;
    EXPECT_EQ(json->delayMs, 250);
}

TEST(FaultInjectorTest, StarsMatchWithinASegmentAndRulesFireTheirNumberOfTimesNeverOnAdmin) {
    EXPECT_TRUE(FaultInjector::globMatch("/v1/music/*/play", "/v1/music/10001/play"));
    EXPECT_FALSE(FaultInjector::globMatch("/v1/music/*/play", "/v1/music/a/b/play"));
    EXPECT_TRUE(FaultInjector::globMatch("/v1/chart/**", "/v1/chart/songs/weekly"));
    EXPECT_FALSE(FaultInjector::globMatch("/v1/chart/**", "/v1/music/trending"));
    EXPECT_TRUE(FaultInjector::globMatch("/media/audio/*.mp3", "/media/audio/10001.mp3"));
    EXPECT_FALSE(FaultInjector::globMatch("/v1/search", "/v1/search_autosuggest"));
    EXPECT_EQ(FaultInjector::absolutePattern("search"), "/v1/search");
    EXPECT_EQ(FaultInjector::absolutePattern("/media/**"), "/media/**");

    FaultInjector faults;
    std::string error;
    faults.add(*FaultRule::parse("POST music/*/play=status:500,times=2", error));
    faults.add(*FaultRule::parse("/**=delay:1", error));
    EXPECT_FALSE(faults.take("GET", "/admin/report"));
    EXPECT_EQ(faults.take("POST", "/v1/music/1/play")->action, Action::status);
    EXPECT_EQ(faults.take("POST", "/v1/music/1/play")->action, Action::status);
    // Used up: the next rule that matches takes over.
    EXPECT_EQ(faults.take("POST", "/v1/music/1/play")->action, Action::delay);
    EXPECT_EQ(faults.list().size(), 1u);
    faults.clear();
    EXPECT_FALSE(faults.take("GET", "/v1/featured"));
}

TEST(FaultInjectorTest, StoppingCutsWaitsShort) {
    FaultInjector faults;
    EXPECT_TRUE(faults.sleepFor(std::chrono::milliseconds(1)));
    faults.stop();
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(faults.sleepFor(std::chrono::seconds(30)));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace tb::service
