#include <nlohmann/json.hpp>

#include "api/NextPageData.h"
#include "api/TBReachabilityManager.h"
#include "core/TBConstants.h"
#include "platform/NotificationCenter.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;
using json = nlohmann::json;

TEST(NextPageDataTest, ThePageStepCountsOnFromNumbersOrNumericText) {
    NextPageData fromNumber(std::string("music/trending"), json{{"page", 3}, {"q", "x"}});
    fromNumber.nextPage();
    EXPECT_EQ(fromNumber.params(), (json{{"page", "4"}, {"q", "x"}}));
    fromNumber.nextPage();
    EXPECT_EQ(fromNumber.params()["page"], "5");

    NextPageData fromText(std::string("search"), json{{"page", "12"}});
    fromText.nextPage();
    EXPECT_EQ(fromText.params()["page"], "13");

    NextPageData without(std::string("user/feed"), json::object());
    without.nextPage();
    EXPECT_EQ(without.params()["page"], "1");
}

TEST(NextPageDataTest, CopiesAreIndependentAndParamsAreAlwaysAnObject) {
    NextPageData original(std::string("a"), json{{"page", "1"}});
    NextPageData copy = original;
    copy.nextPage();
    EXPECT_EQ(original.params()["page"], "1");
    EXPECT_EQ(copy.params()["page"], "2");
    EXPECT_FALSE(original == copy);

    NextPageData moved = std::move(copy);
    EXPECT_TRUE(copy.params().is_object());  // NOLINT(bugprone-use-after-move): stays usable

    NextPageData notAnObject(std::nullopt, json::array({1, 2}));
    EXPECT_EQ(notAnObject.params(), json::object());
    EXPECT_EQ(notAnObject.url(), std::nullopt);
}

class TBReachabilityManagerTest : public ::testing::Test {
  protected:
    TBReachabilityManagerTest() {
        const auto& names = TBConstants::TBGlobalNotifications();
        for (const char* name : {names.networkBecameReachable, names.networkBecameUnreachable}) {
            platform.context().notificationCenter().addObserver(
                name, nullptr, [this](const Notification& note) { posted.push_back(note.name); });
        }
    }

    test::TestPlatform platform;
    std::vector<std::string> posted;
};

TEST_F(TBReachabilityManagerTest, StartPostsEveryChangeThroughTheNotificationCentre) {
    platform.reachability.set(false);
    auto& manager = TBReachabilityManager::shared();
    manager.start();
    manager.start();
    platform.queue.runUntilIdle();
    EXPECT_TRUE(platform.reachability.notifierStarted());
    EXPECT_TRUE(manager.isOffline()) << "offline as soon as the notifier has reported";

    platform.reachability.set(true, false);
    platform.queue.runUntilIdle();
    EXPECT_FALSE(manager.isOffline());
    EXPECT_FALSE(manager.isWiFiReachable());
    EXPECT_THAT(posted, ElementsAre("networkBecameUnreachable", "networkBecameReachable"));
}

TEST_F(TBReachabilityManagerTest, WithoutReachabilityTheAppIsOnlineOnWiFi) {
    TBReachabilityManager manager(nullptr, platform.context().notificationCenter());
    manager.start();
    EXPECT_FALSE(manager.isOffline());
    EXPECT_TRUE(manager.isWiFiReachable());
}

TEST_F(TBReachabilityManagerTest, ChangesAfterTheManagerIsGoneAreNotPosted) {
    {
        TBReachabilityManager manager(&platform.reachability,
                                      platform.context().notificationCenter());
        manager.start();
        platform.queue.runUntilIdle();
    }
    posted.clear();
    platform.reachability.set(false);
    platform.queue.runUntilIdle();
    EXPECT_TRUE(posted.empty());
}

}  // namespace
}  // namespace tb
