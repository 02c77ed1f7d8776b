#include "core/TBConstants.h"
#include "core/TBLocalization.h"
#include "core/TBToastUtils.h"
#include "platform/NotificationCenter.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

class TBToastUtilsTest : public ::testing::Test {
  protected:
    test::TestPlatform platform;
    TBToastUtils& toasts = TBToastUtils::shared();
};

TEST_F(TBToastUtilsTest, TheOfflineToastShowsOnceUntilTheNetworkReturns) {
    toasts.showOfflineToast();
    toasts.showOfflineToast();
    platform.context().notificationCenter().post(
        TBConstants::TBGlobalNotifications().networkBecameUnreachable);
    toasts.showOfflineToast();
    ASSERT_EQ(platform.ui.toasts.size(), 1u);
    EXPECT_EQ(platform.ui.toasts[0].text, TBLocalization::localizedString("toast_offline"));
    EXPECT_NE(platform.ui.toasts[0].text, "toast_offline");
    EXPECT_EQ(platform.ui.toasts[0].image, UIHost::ToastImage::Failure);

    platform.context().notificationCenter().post(
        TBConstants::TBGlobalNotifications().networkBecameReachable);
    toasts.showOfflineToast();
    toasts.showOfflineToast();
    EXPECT_EQ(platform.ui.toasts.size(), 2u);
}

TEST_F(TBToastUtilsTest, ToastsCarryTheImageOfTheirOutcome) {
    toasts.showToast("Saved", true);
    toasts.showToast("Not saved", false);
    ASSERT_EQ(platform.ui.toasts.size(), 2u);
    EXPECT_EQ(platform.ui.toasts[0].image, UIHost::ToastImage::Success);
    EXPECT_EQ(platform.ui.toasts[1].text, "Not saved");
    EXPECT_EQ(platform.ui.toasts[1].image, UIHost::ToastImage::Failure);
}

TEST(TBToastUtilsLifetimeTest, AToastUtilityGoneStopsObserving) {
    test::TestPlatform platform;
    {
        TBToastUtils local(platform.ui, platform.context().notificationCenter());
        local.showOfflineToast();
    }
    platform.context().notificationCenter().post(
        TBConstants::TBGlobalNotifications().networkBecameReachable);
    EXPECT_EQ(platform.ui.toasts.size(), 1u);
}

}  // namespace
}  // namespace tb
