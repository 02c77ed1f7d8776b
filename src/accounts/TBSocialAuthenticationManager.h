#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "accounts/SocialSignIn.h"

namespace tb {

// Gets a token from the listener's Facebook, Google or Twitter account through the social
// sign-in. Google answers through a delegate, so its blocks wait here until it does; a new
// Google sign-in replaces blocks still waiting.
class TBSocialAuthenticationManager {
  public:
    using Success = std::function<void(const SocialSignIn::Token& token)>;
    using Failure = std::function<void(const std::optional<Error>& error)>;
    using Cancellation = std::function<void()>;

    explicit TBSocialAuthenticationManager(SocialSignIn& social);
    ~TBSocialAuthenticationManager();
    TBSocialAuthenticationManager(const TBSocialAuthenticationManager&) = delete;
    TBSocialAuthenticationManager& operator=(const TBSocialAuthenticationManager&) = delete;

    void authenticate(SocialSignIn::Provider provider,
                      Success success,
                      Failure failure,
                      Cancellation cancellation);

    bool googleAuthenticationPending() const { return static_cast<bool>(pendingGoogleSuccess_); }

  private:
    // Google's answer to the sign-in, with the blocks that waited for it.
    void signInDidSignIn(const std::optional<SocialSignIn::Token>& token,
                         const std::optional<Error>& error);
    static void answer(const std::optional<SocialSignIn::Token>& token,
                       const std::optional<Error>& error,
                       const Success& success,
                       const Failure& failure,
                       const Cancellation& cancellation);

    SocialSignIn& social_;
    Success pendingGoogleSuccess_;
    Failure pendingGoogleFailure_;
    Cancellation pendingGoogleCancellation_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tb
