// The catalogue's places in the launch: the environment, reachability and featured music.

#include <nlohmann/json.hpp>

#include "api/TBDataManager.h"
#include "api/TBXAuthClientManager.h"
#include "app/TBAppDelegate.h"
#include "core/TBPreferencesRepository.h"
#include "model/TBFeaturedSpot.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

class CatalogueLaunchTest : public ::testing::Test {
  protected:
    TBAppDelegate& launch() {
        auto& app = TBAppDelegate::shared();
        EXPECT_EQ(app.didFinishLaunchingWithOptions(), std::nullopt);
        return app;
    }

    std::size_t featuredRequests() const {
        std::size_t count = 0;
        for (const auto& sent : platform.http.sent()) {
            count += sent->request.url.find("/featured") != std::string::npos;
        }
        return count;
    }

    test::TestPlatform platform;
};

TEST_F(CatalogueLaunchTest, TheEnvironmentChoiceSetsTheCatalogueHost) {
    TBPreferencesRepository(platform.defaults, platform.context().notificationCenter())
        .setLiveEnvironment(false);
    launch();
    EXPECT_EQ(TBDataManager::baseURL(), "http://127.0.0.1:8081/v1/");
    EXPECT_EQ(TBXAuthClientManager::sharedManager().client().baseURL(),
              "http://127.0.0.1:8081/v1/");
}

TEST_F(CatalogueLaunchTest, AnAbsentPreferenceMeansTheLiveHost) {
    launch();
    EXPECT_EQ(TBDataManager::baseURL(), "https://api.tunebrook.test/v1/");
}

TEST_F(CatalogueLaunchTest, ReachabilityIsWatchedFromTheLaunchOn) {
    launch();
    EXPECT_TRUE(platform.reachability.notifierStarted());
}

TEST_F(CatalogueLaunchTest, FeaturedMusicIsAskedAtLaunchAndOnEachReturnToForeground) {
    auto& app = launch();
    EXPECT_EQ(featuredRequests(), 1u);
    const nlohmann::json answer{
        {"results", {{{"type", "artist"}, {"ref", {{"id", "4"}, {"url_slug", "four"}}}}}}};
    platform.http.respond(*platform.http.firstPending(), 200, answer.dump());
    platform.queue.runUntilIdle();
    ASSERT_TRUE(TBDataManager::sharedManager().featuredSpot());

    app.applicationWillEnterForeground();
    EXPECT_EQ(featuredRequests(), 2u);
}

}  // namespace
}  // namespace tb
