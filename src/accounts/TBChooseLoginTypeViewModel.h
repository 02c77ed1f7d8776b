#pragma once

#include <functional>
#include <string>

#include "accounts/SocialSignIn.h"
#include "accounts/TBUserManager.h"

namespace tb {

class TBCredentials;
class TBReachabilityManager;
class TBSocialAuthenticationManager;

// The decisions of the screen that offers the ways to sign in: each social route asks the
// account's token, then signs in with it; the screen hears the outcome through the closures.
// A social login the service can't finish without an email hands back, in the failure's
// extra, what the screen sends again with the email it asks for (loginWithSocial).
class TBChooseLoginTypeViewModel {
  public:
    // (a new account was created, the screen's source, "Facebook", "Google" or "Twitter").
    using Analytics =
        std::function<void(bool createdAccount, int source, const std::string& authenticationType)>;

    struct Collaborators {
        TBSocialAuthenticationManager& socialAuthenticationManager;
        TBUserManager& userManager;
        TBCredentials& credentials;
        TBReachabilityManager& reachability;
        Analytics analytics;
    };

    TBChooseLoginTypeViewModel(Collaborators collaborators, int source);

    int source() const { return source_; }

    // The screen's closures; any may be empty.
    std::function<void()> authenticationSuccess;
    std::function<void(const std::string& message, const TBLoginExtra& extra)>
        authenticationFailure;
    std::function<void(bool taken)> emailExistenceCheckSuccess;
    std::function<void(const std::string& email)> socialLoginEmailAlreadyExists;

    void authenticate(SocialSignIn::Provider provider);
    // Signs in with the values of a social account: "socialId" and "socialToken" for
    // Facebook, "socialToken" for Google, "socialToken" and "socialSecret" for Twitter, each
    // with an optional "socialEmail".
    void loginWithSocial(SocialSignIn::Provider provider, const TBLoginExtra& values);
    void checkEmailExistence(const std::string& email);

  private:
    void fail(const std::string& messageKey) const;
    void loginSucceeded(SocialSignIn::Provider provider) const;

    TBSocialAuthenticationManager& socialAuthenticationManager_;
    TBUserManager& userManager_;
    TBCredentials& credentials_;
    TBReachabilityManager& reachability_;
    Analytics analytics_;
    int source_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tb
