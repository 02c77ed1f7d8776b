#pragma once

namespace tb {

// Names of the analytics events. Some texts carry odd spacing or case on purpose: the
// dashboards count them by these exact names.
struct TBAnalyticsEvents {
    const char* removedContent = "Removed Content";
    const char* chooseLoginType = "ChooseLoginType";
    const char* login = "Login";
    const char* signup = "Signup";
    const char* search = "Search";
    const char* featuredMusicProfileTap = "Featured Music, ProfileTap";
    const char* featuredMusicPlay = "Featured Music, Play";
    const char* featuredMusicFollow = "Featured Music, Follow";
    const char* myUploads = "My Uploads";
    const char* feed = "feed";
    const char* download = "Download";
    const char* permissions = "Permissions";
    const char* genrePicker = "Genre Picker";
    const char* appLaunch = "App Launch";
    const char* trending = "Trending";
    const char* offline = "Offline - Downloads";
    const char* forgotPassword = "Forgot password";
    const char* forgotPasswordSuccess = "Forgot password Success";
    const char* forgotPasswordEmailNotFound = "Forgot password  Email Not Found";
    const char* loginAttempt = "Login Attempt";
    const char* loginFailure = "Login Failure";
    const char* loginSuccess = "Login Success";
    const char* signupAttempt = "Signup Attempt";
    const char* signupFailure = "Signup Failure";
    const char* signupSuccess = "Signup Success";
    const char* playlistDownload = "Playlist Download";
};

}  // namespace tb
