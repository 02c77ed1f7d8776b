#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Error.h"

namespace tb {

// What the listener's social accounts hand the app: the sign-in libraries of Facebook,
// Google and Twitter, reduced to the calls the session makes. The service checks the tokens;
// the app only carries them.
class SocialSignIn {
  public:
    enum class Provider { facebook, google, twitter };

    // One account's credentials as the service's login takes them: Facebook gives an id and
    // a token, Google a token (its id token), Twitter a token and a secret; each may know
    // the account's email.
    struct Token {
        std::optional<std::string> socialId;
        std::string socialToken;
        std::optional<std::string> socialSecret;
        std::optional<std::string> socialEmail;
        // Facebook's token has a lifetime of its own, which the app renews before use.
        bool expired = false;
    };

    // An error, or nothing on success.
    using Completion = std::function<void(const std::optional<Error>& error)>;
    // The token, or nothing with an error (cancelled: nothing and no error).
    using TokenCompletion =
        std::function<void(const std::optional<Token>& token, const std::optional<Error>& error)>;

    virtual ~SocialSignIn() = default;

    // Asks the listener to pick an account of `provider`.
    virtual void signIn(Provider provider, TokenCompletion completion) = 0;

    // Facebook's current access token, if the library holds one.
    virtual std::optional<Token> facebookCurrentAccessToken() = 0;
    // Renews Facebook's current access token.
    virtual void facebookRefreshCurrentAccessToken(Completion completion) = 0;

    // Whether Google has a signed-in user whose tokens can be asked for.
    virtual bool googleHasCurrentUser() = 0;
    // Fresh tokens of Google's current user.
    virtual void googleGetTokens(TokenCompletion completion) = 0;
    // Signs Google's previous user in again without asking; the completion may come long
    // after the caller has moved on.
    virtual void googleSignInSilently(TokenCompletion completion) = 0;
};

}  // namespace tb
