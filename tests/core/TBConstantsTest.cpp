#include <map>
#include <set>

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
    std::map<std::int64_t, int> uses;
    for (const auto code : all) {
        ++uses[code];
    }
    EXPECT_EQ(uses.size(), 57u);
    for (std::int64_t code = 100; code <= 157; ++code) {
        const int expected = code == 119 ? 0 : code == 129 ? 2 : 1;
        EXPECT_EQ(uses[code], expected) << code;
    }
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
