#include "accounts/TBSocialAuthenticationManager.h"

#include <utility>

namespace tb {

TBSocialAuthenticationManager::TBSocialAuthenticationManager(SocialSignIn& social)
    : social_(social) {}

TBSocialAuthenticationManager::~TBSocialAuthenticationManager() = default;

void TBSocialAuthenticationManager::authenticate(SocialSignIn::Provider provider,
                                                 Success success,
                                                 Failure failure,
                                                 Cancellation cancellation) {
    std::weak_ptr<bool> alive = alive_;
    if (provider != SocialSignIn::Provider::google) {
        social_.signIn(provider, [success, failure, cancellation](
                                     const std::optional<SocialSignIn::Token>& token,
                                     const std::optional<Error>& error) {
            answer(token, error, success, failure, cancellation);
        });
        return;
    }
    pendingGoogleSuccess_ = std::move(success);
    pendingGoogleFailure_ = std::move(failure);
    pendingGoogleCancellation_ = std::move(cancellation);
    social_.signIn(provider, [this, alive](const std::optional<SocialSignIn::Token>& token,
                                           const std::optional<Error>& error) {
        if (!alive.expired()) {
            signInDidSignIn(token, error);
        }
    });
}

void TBSocialAuthenticationManager::signInDidSignIn(const std::optional<SocialSignIn::Token>& token,
                                                    const std::optional<Error>& error) {
    const auto success = std::exchange(pendingGoogleSuccess_, nullptr);
    const auto failure = std::exchange(pendingGoogleFailure_, nullptr);
    const auto cancellation = std::exchange(pendingGoogleCancellation_, nullptr);
    answer(token, error, success, failure, cancellation);
}

void TBSocialAuthenticationManager::answer(const std::optional<SocialSignIn::Token>& token,
                                           const std::optional<Error>& error,
                                           const Success& success,
                                           const Failure& failure,
                                           const Cancellation& cancellation) {
    if (token) {
        if (success) {
            success(*token);
        }
    } else if (error) {
        if (failure) {
            failure(error);
        }
    } else if (cancellation) {
        cancellation();
    }
}

}  // namespace tb
