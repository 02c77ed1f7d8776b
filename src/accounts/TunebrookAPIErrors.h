#pragma once

namespace tb {

// The steps of each way to sign in, as analytics and error records name them: tapped,
// started, succeeded, failed, timed out.
enum class TunebrookAPILoginError {
    signinTapped,
    signinStarted,
    signinSuccess,
    signinFailure,
    signinTimeout
};

enum class TunebrookAPISignupError {
    signupTapped,
    signupStarted,
    signupSuccess,
    signupFailure,
    signupTimeout
};

enum class TunebrookAPISocialLoginError {
    facebookTapped,
    facebookStarted,
    facebookSuccess,
    facebookFailure,
    facebookTimeout,
    googleTapped,
    googleStarted,
    googleSuccess,
    googleFailure,
    googleTimeout,
    twitterTapped,
    twitterStarted,
    twitterSuccess,
    twitterFailure,
    twitterTimeout,
};

}  // namespace tb
