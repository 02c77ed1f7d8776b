#include <memory>
#include <string>
#include <vector>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "support/AppRun.h"
#include "support/ServiceProcess.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

using json = nlohmann::ordered_json;
using ::testing::HasSubstr;
using ::testing::SizeIs;

// `tunebrook remote-vars` against the reference service: what the service is set to serve,
// read by the app's rules, on a fresh install and on the launches after it.
class RemoteVarsCommandTest : public ::testing::Test {
  protected:
    std::unique_ptr<ServiceProcess> startService(std::vector<std::string> extra = {}) {
        std::vector<std::string> args{"--media", "placeholder", "--media-cache",
                                      ServiceProcess::mediaCacheFor(TB_SERVICE_BINARY)};
        args.insert(args.end(), extra.begin(), extra.end());
        auto service =
            std::make_unique<ServiceProcess>(TB_SERVICE_BINARY, dir.file("service"), args);
        EXPECT_TRUE(service->started()) << service->error();
        return service;
    }

    static int postRemoteConfig(const ServiceProcess& service, const std::string& body) {
        httplib::Client client(service.host(), service.port());
        auto answer = client.Post("/admin/remote-config", body, "application/json");
        return answer ? answer->status : 0;
    }

    AppRun remoteVars(const std::vector<std::string>& options = {"--json"}) {
        std::vector<std::string> arguments{"--home", home.path(), "--keys",
                                           dir.file("service/keys.json"), "remote-vars"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        AppRun run = AppRun::of(TB_APP_BINARY, arguments);
        EXPECT_EQ(run.status, 0) << run.err;
        return run;
    }

    TempDir dir;
    TempDir home;
};

TEST_F(RemoteVarsCommandTest, AFreshInstallShowsTheServedValuesWhichOutliveTheService) {
    auto service = startService();
    EXPECT_EQ(postRemoteConfig(*service, "[1]"), 400);
    ASSERT_EQ(postRemoteConfig(*service, R"({"ad_banner_timing": 45, "tester": true,
        "ad_interstitial_timing": "soon", "search_trending": "{\"a\": 1}",
        "deeplink_firstload": "music_songs"})"),
              200);
    // The set is kept by the service across a restart.
    service.reset();
    service = startService();

    const json fresh = json::parse(remoteVars().out, nullptr, false);
    ASSERT_TRUE(fresh.is_object());
    EXPECT_EQ(fresh["ad_banner_timing"], 45);
    EXPECT_EQ(fresh["tester"], true);
    EXPECT_EQ(fresh["ad_interstitial_timing"], 0);
    EXPECT_EQ(fresh["search_trending"], json::array());
    EXPECT_EQ(fresh["deeplink_firstload"], "music_songs");
    EXPECT_EQ(fresh["ad_banner_minduration"], 10);  // not sent: its default
    EXPECT_EQ(fresh.begin().key(), "ad_interstitial_timing");
    EXPECT_THAT(fresh, SizeIs(21));

    service->terminate();
    const AppRun later = remoteVars({});
    EXPECT_LT(later.seconds, 4.0);
    EXPECT_THAT(later.out, HasSubstr("\nad_banner_timing: 45\n"));
    EXPECT_THAT(later.out, HasSubstr("\ndeeplink_firstload: music_songs\n"));
    EXPECT_THAT(later.out, HasSubstr("\nsearch_trending: []\n"));
}

TEST_F(RemoteVarsCommandTest, AFreshInstallWhoseFetchHangsGoesOnAfterFiveSecondsOnTheDefaults) {
    auto service = startService({"--fault", "/remote-config=hang:30000"});
    ASSERT_EQ(postRemoteConfig(*service, R"({"onboarding_enabled": true})"), 200);

    const AppRun run = remoteVars();
    const json values = json::parse(run.out, nullptr, false);
    EXPECT_GE(run.seconds, 5.0);
    EXPECT_LT(run.seconds, 15.0);
    EXPECT_EQ(values["onboarding_enabled"], false);
    EXPECT_EQ(values["in_app_rating_enabled"], false);
    EXPECT_EQ(values["ad_interstitial_enabled_firstload"], false);
    EXPECT_EQ(values["ad_interstitial_timing"], 275);
    EXPECT_THAT(values["search_trending"], SizeIs(3));
}

}  // namespace
}  // namespace tb::test
