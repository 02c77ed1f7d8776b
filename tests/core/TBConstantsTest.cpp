#include <iterator>
#include <set>
#include <vector>

#include "core/TBConstants.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

// The dashboards group crash reports by code, so the shipped numbering must survive any
// tidying: 100..157 with 129 given twice and 119 never used.
TEST(TBConstantsTest, CrashReportCodesKeepTheirShippedNumbering) {
    const auto& codes = TBConstants::TBCrashlyticsErrorCodes();
    EXPECT_STREQ(codes.tunebrookErrorDomain, "com.tunebrook");
    EXPECT_EQ(codes.coreDataError256OnStartupAfterError256OnStartup, 129);
    EXPECT_EQ(codes.tappedGoogleLogin, 129);

    const std::int64_t all[] = {codes.updateProfile,
                                codes.invalidStreaming,
                                codes.unauthorized,
                                codes.tokenRefreshFailed,
                                codes.downloadsFullWipeout,
                                codes.downloadsPartialWipeout,
                                codes.localFilePlaybackError,
                                codes.facebookAd,
                                codes.preventedDocumentsWipeout,
                                codes.coreDataSave,
                                codes.retryDownload,
                                codes.interstitialShowCrash,
                                codes.tokenRefreshFailed400500,
                                codes.invalidSongDuration,
                                codes.songDownloadFailed,
                                codes.databaseRecreated,
                                codes.coreDataSaveSucceededAfterError256OnStartup,
                                codes.coreDataSaveFailedAfterError256OnStartup,
                                codes.coreDataNoErrorsOnStartupAfterError256OnStartup,
                                codes.coreDataError256OnStartupAfterError256OnStartup,
                                codes.coreDataError256OnStartupAfterSuccessfulStartup,
                                codes.coreDataOtherErrorOnStartupAfterError256OnStartup,
                                codes.dataRetrieveFailedToGrowBuffer,
                                codes.tappedFacebookLogin,
                                codes.startedFacebookLogin,
                                codes.emptyFacebookToken,
                                codes.successFacebookLogin,
                                codes.errorFacebookLogin,
                                codes.errorFacebookLoginTimeout,
                                codes.tappedGoogleLogin,
                                codes.startedGoogleLogin,
                                codes.emptyGoogleToken,
                                codes.successGoogleLogin,
                                codes.errorGoogleLogin,
                                codes.errorGoogleLoginTimeout,
                                codes.tappedTwitterLogin,
                                codes.startedTwitterLogin,
                                codes.emptyTwitterToken,
                                codes.successTwitterLogin,
                                codes.errorTwitterLogin,
                                codes.errorTwitterLoginTimeout,
                                codes.tappedUsernamePwLogin,
                                codes.startedUsernamePwLogin,
                                codes.emptyUsernamePwLoginCredentials,
                                codes.successUsernamePwLogin,
                                codes.errorUsernamePwLogin,
                                codes.errorUsernamePwLoginTimeout,
                                codes.tappedUsernamePwSignup,
                                codes.startedUsernamePwSignup,
                                codes.emptyUsernamePwSignupCredentials,
                                codes.successUsernamePwSignup,
                                codes.errorUsernamePwSignup,
                                codes.errorUsernamePwSignupTimeout,
                                codes.facebookTokenRefreshSuccess,
                                codes.facebookTokenRefreshError,
                                codes.googleTokenRefreshSuccess,
                                codes.googleTokenRefreshError,
                                codes.musicPlayerStreamingFailed};
    // Listed in the shipped order, each code is one more than the last, except that the
    // twentieth is 129 where 119 would be, and 129 comes again in its own place.
    std::vector<std::int64_t> shipped;
    for (std::int64_t code = 100; code <= 157; ++code) {
        shipped.push_back(code == 119 ? 129 : code);
    }
    ASSERT_EQ(std::size(all), shipped.size());
    for (size_t i = 0; i < shipped.size(); ++i) {
        EXPECT_EQ(all[i], shipped[i]) << "code number " << i;
    }
}

// Stored keys, group ids and event names that the stored data and dashboards read: their odd
// spacing and case are part of them.
TEST(TBConstantsTest, IrregularTextsStayAsShipped) {
    const auto& events = TBConstants::TBAnalyticsEvents();
    EXPECT_STREQ(events.forgotPasswordEmailNotFound, "Forgot password  Email Not Found");
    EXPECT_STREQ(events.feed, "feed");
    EXPECT_STREQ(events.offline, "Offline - Downloads");
    const auto& keys = TBConstants::TBUserDefaultKeys();
    EXPECT_STREQ(keys.interstitialAdTimestamp, "interstitialad_timestamp");
    EXPECT_STREQ(keys.soundOnInterstitialAdTimestamp, "sound_on_interstitialad_timestamp");
    EXPECT_STREQ(TBConstants::TBGroupIdsContants().imessageExtension,
                 "group.com.tunebrook.iphone.imessageextension");
}

TEST(TBConstantsTest, NotificationNamesAreDistinct) {
    const auto& n = TBConstants::TBGlobalNotifications();
    const std::set<std::string> names = {n.loggedIn,
                                         n.loggedOut,
                                         n.canceledLogin,
                                         n.commentsCountUpdated,
                                         n.download,
                                         n.downloadRemoved,
                                         n.shuffleStatusChanged,
                                         n.didEnterBackground,
                                         n.willEnterForeground,
                                         n.housekeepingCompleted,
                                         n.musicCellTypeChanged,
                                         n.editedPlaylist,
                                         n.deletedPlaylist,
                                         n.featuredPostsPulled,
                                         n.songChanged,
                                         n.canCastSongToChromecast,
                                         n.playPauseChanged,
                                         n.needCastPositionAndStatusUpdate,
                                         n.highlightsChanged,
                                         n.searchFiltersChanged,
                                         n.networkBecameReachable,
                                         n.networkBecameUnreachable,
                                         n.favoriteToggled,
                                         n.playerClosed,
                                         n.eqEnablingChanged,
                                         n.eqValuesChanged,
                                         n.chromecastSessionChanged};
    EXPECT_EQ(names.size(), 27u);
}

}  // namespace
}  // namespace tb
