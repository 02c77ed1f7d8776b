#include "ads/InterstitialsManager.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

class InterstitialsManagerTest : public ::testing::Test {
  protected:
    MemoryUserDefaults& standard() { return platform.defaults.standard(); }

    test::TestPlatform platform;
    InterstitialsManager& interstitials = InterstitialsManager::shared();
};

TEST_F(InterstitialsManagerTest, AnyObjectUnderTheTimeStampEndsTheFreshInstall) {
    EXPECT_TRUE(interstitials.isFreshInstall());
    standard().setString("interstitialad_timestamp", "");
    EXPECT_FALSE(interstitials.isFreshInstall());
    standard().removeObjectForKey("interstitialad_timestamp");
    EXPECT_TRUE(interstitials.isFreshInstall());
}

TEST_F(InterstitialsManagerTest, NotShownStoresZeroAndSynchronizes) {
    interstitials.setInterstitialAdNotShown();
    EXPECT_EQ(standard().objectForKey("interstitialad_timestamp"), DefaultsValue(0.0));
    EXPECT_EQ(standard().synchronizeCount(), 1);
    EXPECT_FALSE(interstitials.isFreshInstall());
}

TEST_F(InterstitialsManagerTest, ShownStoresNowAndSynchronizes) {
    platform.queue.advanceBy(12.5);
    interstitials.setInterstitialAdShown();
    EXPECT_EQ(standard().objectForKey("interstitialad_timestamp"),
              DefaultsValue(platform.queue.clock().now()));
    EXPECT_EQ(standard().synchronizeCount(), 1);
}

}  // namespace
}  // namespace tb
