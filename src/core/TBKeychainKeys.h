#pragma once

namespace tb {

// Keys of the keychain entries. The three crash-reporter entries outlive a reinstall, so a
// device keeps its pick.
struct TBKeychainKeys {
    const char* userEmail = "email";
    const char* userPassword = "password";
    const char* socialEmail = "socialEmail";
    const char* userFacebookId = "facebookId";
    const char* userGoogleIdToken = "googleIdToken";
    const char* userTwitterToken = "twitterToken";
    const char* userTwitterSecret = "twitterSecret";
    const char* userSlug = "userSlug";
    const char* userId = "userId";
    const char* userScreenName = "userScreenName";
    const char* token = "token";
    const char* tokenSecret = "tokenSecret";
    const char* tokenExpiration = "tokenExpiration";
    const char* notificationsUnseen = "notificationsUnseen";
    const char* feedUnseen = "feedUnseen";
    const char* ticketRepliesUnseen = "ticketRepliesUnseen";
    const char* registeredViaSocial = "registeredViaSocial";
    const char* crashReportingSDKPicked = "crashReportingSDKPicked";
    const char* embraceEnabled = "embraceEnabled";
    const char* bugsnagEnabled = "bugsnagEnabled";
};

}  // namespace tb
