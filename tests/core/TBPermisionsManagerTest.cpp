#include "core/LocationManager.h"
#include "core/TBPermisionsManager.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

class TBPermisionsManagerTest : public ::testing::Test {
  protected:
    test::TestPlatform platform;
    TBPermisionsManager& permissions = TBPermisionsManager::sharedInstance();
};

TEST_F(TBPermisionsManagerTest, PromptsUntilTheListenerAnswersAndAnUnknownAnswerCountsAsNone) {
    EXPECT_TRUE(permissions.shouldPrompt());
    permissions.recordAnswer(TBPermisionsManager::Answer::yes);

    auto& defaults = platform.defaults.standard();
    EXPECT_EQ(defaults.stringForKey("permissionsAnswer"), "yes");
    EXPECT_DOUBLE_EQ(defaults.doubleForKey("permissionsAnswerDate"), platform.queue.clock().now());
    EXPECT_GE(defaults.synchronizeCount(), 1);
    platform.queue.advanceBy(30 * 86400.0);
    EXPECT_FALSE(permissions.shouldPrompt());
}

TEST_F(TBPermisionsManagerTest, LaterPromptsAgainAfterSevenDays) {
    permissions.recordAnswer(TBPermisionsManager::Answer::later);
    EXPECT_FALSE(permissions.shouldPrompt());

    platform.queue.advanceBy(604800.0 - 1.0);
    EXPECT_FALSE(permissions.shouldPrompt());
    platform.queue.advanceBy(1.0);
    EXPECT_TRUE(permissions.shouldPrompt());

    platform.defaults.standard().setString("permissionsAnswer", "maybe");
    EXPECT_EQ(permissions.answer(), std::nullopt);
    EXPECT_TRUE(permissions.shouldPrompt());
}

TEST_F(TBPermisionsManagerTest, LinuxHasNoPushOrLocation) {
    EXPECT_FALSE(permissions.pushGranted());

    auto& location = LocationManager::shared();
    location.updateLocation();
    EXPECT_FALSE(location.isEnabled());
    EXPECT_FALSE(location.currentLocation());
}

}  // namespace
}  // namespace tb
