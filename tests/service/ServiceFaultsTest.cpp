#include <chrono>
#include <future>

#include "service/ServiceFixture.h"
#include "support/WaitFor.h"
#include "tunebrook-service/Service.h"
#include "tunebrook-service/http/FaultInjector.h"

namespace tb::test {
namespace {

class ServiceFaultsTest : public ServiceFixture {
  protected:
    void inject(const std::string& rule) {
        auto answer = raw("POST", "/admin/faults", {}, nlohmann::json{{"rule", rule}}.dump(),
                          "application/json");
        ASSERT_EQ(answer.status, 200) << answer.body;
    }
};

TEST_F(ServiceFaultsTest, StatusFaultsAnswerForTheirNumberOfTimesAndDelaysStillArriveWhole) {
    inject("GET featured=status:503,times=2");
    auto first = call("GET", "featured");
    EXPECT_EQ(first.status, 503);
    EXPECT_TRUE(first.json.contains("errorcode"));
    EXPECT_EQ(call("GET", "featured").status, 503);
    EXPECT_EQ(call("GET", "featured").status, 200);
    // A POST with a body keeps the connection in step.
    inject("POST music/*/play=status:500,times=1");
    std::string song = playableSongId();
    EXPECT_EQ(call("POST", "music/" + song + "/play", {{"section", "x"}}).status, 500);
    EXPECT_EQ(call("POST", "music/" + song + "/play", {{"section", "x"}}).status, 200);

    auto plain = call("GET", "chart/songs/weekly");
    inject("chart/**=delay:300,times=1");
    auto start = std::chrono::steady_clock::now();
    auto delayed = call("GET", "chart/songs/weekly");
    EXPECT_EQ(delayed.json["results"].size(), plain.json["results"].size());
    EXPECT_EQ(delayed.json["results"][0]["title"], plain.json["results"][0]["title"]);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));

    inject("featured=drip:2000:50,times=1");
    auto whole = call("GET", "featured");
    EXPECT_EQ(whole.status, 200);
    EXPECT_FALSE(whole.json.is_discarded());
}

TEST_F(ServiceFaultsTest, CutBodiesResetsAndHangsGiveNoWholeAnswer) {
    inject("featured=truncate:40%,times=1");
    auto cut = call("GET", "featured");
    EXPECT_FALSE(cut.transportOk && cut.json.is_object());
    inject("/media/audio/*=truncate:1000,times=1");
    auto stream = call("POST", "music/" + playableSongId() + "/play");
    std::string url = stream.json;
    auto audio = raw("GET", url.substr(url.find("/media/")));
    EXPECT_FALSE(audio.transportOk && audio.body.size() > 1000);

    inject("featured=reset,times=1");
    EXPECT_FALSE(call("GET", "featured").transportOk);
    EXPECT_EQ(call("GET", "featured").status, 200);

    inject("featured=hang:1500,times=1");
    auto start = std::chrono::steady_clock::now();
    auto hung = call("GET", "featured");
    EXPECT_FALSE(hung.transportOk && hung.status == 200);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1400));
    EXPECT_EQ(call("GET", "featured").status, 200);
}

TEST_F(ServiceFaultsTest, StoppingTheServerEndsAHangAtOnce) {
    inject("featured=hang:60000,times=1");
    auto hung = std::async(std::launch::async, [this] { return call("GET", "featured"); });
    // A rule leaves the list once it has fired its last time: the request is being held.
    ASSERT_TRUE(waitFor([this] { return raw("GET", "/admin/faults").json["faults"].empty(); },
                        std::chrono::seconds(5)));
    auto start = std::chrono::steady_clock::now();
    service().stop();
    EXPECT_EQ(hung.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(ServiceFaultsTest, TheAdminEndpointListsAndClearsRulesAndRefusesBadOnes) {
    inject("search=delay:1");
    EXPECT_EQ(raw("GET", "/admin/faults").json["faults"].size(), 1u);
    auto bad =
        raw("POST", "/admin/faults", {}, R"({"path":"x","action":"melt"})", "application/json");
    EXPECT_EQ(bad.status, 400);
    EXPECT_EQ(raw("POST", "/admin/faults", {}, "{not json", "application/json").status, 400);
    raw("DELETE", "/admin/faults");
    EXPECT_TRUE(raw("GET", "/admin/faults").json["faults"].empty());
    // Admin paths are never faulted.
    inject("/**=status:500");
    EXPECT_EQ(raw("GET", "/admin/health").status, 200);
}

}  // namespace
}  // namespace tb::test
