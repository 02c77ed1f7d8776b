#pragma once

#include <cstdint>

namespace tb {

// The domain and codes of the errors recorded with the crash reporter. The dashboards group
// records by these numbers, so they never change: 129 stands twice and 119 is unused, as
// they have been since the codes were first shipped.
struct TBCrashlyticsErrorCodes {
    const char* tunebrookErrorDomain = "com.tunebrook";
    std::int64_t updateProfile = 100;
    std::int64_t invalidStreaming = 101;
    std::int64_t unauthorized = 102;
    std::int64_t tokenRefreshFailed = 103;
    std::int64_t downloadsFullWipeout = 104;
    std::int64_t downloadsPartialWipeout = 105;
    std::int64_t localFilePlaybackError = 106;
    std::int64_t facebookAd = 107;
    std::int64_t preventedDocumentsWipeout = 108;
    std::int64_t coreDataSave = 109;
    std::int64_t retryDownload = 110;
    std::int64_t interstitialShowCrash = 111;
    std::int64_t tokenRefreshFailed400500 = 112;
    std::int64_t invalidSongDuration = 113;
    std::int64_t songDownloadFailed = 114;
    std::int64_t databaseRecreated = 115;
    std::int64_t coreDataSaveSucceededAfterError256OnStartup = 116;
    std::int64_t coreDataSaveFailedAfterError256OnStartup = 117;
    std::int64_t coreDataNoErrorsOnStartupAfterError256OnStartup = 118;
    std::int64_t coreDataError256OnStartupAfterError256OnStartup =
        129;  // shares 129 with tappedGoogleLogin; 119 is free
    std::int64_t coreDataError256OnStartupAfterSuccessfulStartup = 120;
    std::int64_t coreDataOtherErrorOnStartupAfterError256OnStartup = 121;
    std::int64_t dataRetrieveFailedToGrowBuffer = 122;
    std::int64_t tappedFacebookLogin = 123;
    std::int64_t startedFacebookLogin = 124;
    std::int64_t emptyFacebookToken = 125;
    std::int64_t successFacebookLogin = 126;
    std::int64_t errorFacebookLogin = 127;
    std::int64_t errorFacebookLoginTimeout = 128;
    std::int64_t tappedGoogleLogin = 129;
    std::int64_t startedGoogleLogin = 130;
    std::int64_t emptyGoogleToken = 131;
    std::int64_t successGoogleLogin = 132;
    std::int64_t errorGoogleLogin = 133;
    std::int64_t errorGoogleLoginTimeout = 134;
    std::int64_t tappedTwitterLogin = 135;
    std::int64_t startedTwitterLogin = 136;
    std::int64_t emptyTwitterToken = 137;
    std::int64_t successTwitterLogin = 138;
    std::int64_t errorTwitterLogin = 139;
    std::int64_t errorTwitterLoginTimeout = 140;
    std::int64_t tappedUsernamePwLogin = 141;
    std::int64_t startedUsernamePwLogin = 142;
    std::int64_t emptyUsernamePwLoginCredentials = 143;
    std::int64_t successUsernamePwLogin = 144;
    std::int64_t errorUsernamePwLogin = 145;
    std::int64_t errorUsernamePwLoginTimeout = 146;
    std::int64_t tappedUsernamePwSignup = 147;
    std::int64_t startedUsernamePwSignup = 148;
    std::int64_t emptyUsernamePwSignupCredentials = 149;
    std::int64_t successUsernamePwSignup = 150;
    std::int64_t errorUsernamePwSignup = 151;
    std::int64_t errorUsernamePwSignupTimeout = 152;
    std::int64_t facebookTokenRefreshSuccess = 153;
    std::int64_t facebookTokenRefreshError = 154;
    std::int64_t googleTokenRefreshSuccess = 155;
    std::int64_t googleTokenRefreshError = 156;
    std::int64_t musicPlayerStreamingFailed = 157;
};

}  // namespace tb
