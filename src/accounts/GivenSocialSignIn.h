#pragma once

#include <optional>
#include <string>

#include "accounts/SocialSignIn.h"

namespace tb {

class JSON;

// The social sign-in of a platform without the providers' libraries: the tokens are given
// (on the command line, or in a JSON file) and every call answers with them at once.
//   {"facebook": {"id": ..., "token": ..., "email": ..., "expired": false},
//    "google": {"token": ..., "email": ...},
//    "twitter": {"token": ..., "secret": ..., "email": ...}}
// A provider without a token is one the listener has not signed in with: its sign-in is
// cancelled and its silent calls fail. Renewing Facebook's token makes it current again.
class GivenSocialSignIn final : public SocialSignIn {
  public:
    struct Tokens {
        std::optional<Token> facebook;
        std::optional<Token> google;
        std::optional<Token> twitter;
    };

    GivenSocialSignIn() = default;
    explicit GivenSocialSignIn(Tokens tokens) : tokens_(std::move(tokens)) {}

    // The tokens of a JSON document as above; what is missing or malformed is left out.
    static Tokens tokensFrom(const JSON& document);
    // The tokens of the file at `path`; none when it is empty or can't be read.
    static Tokens tokensFromFile(const std::string& path);

    void signIn(Provider provider, TokenCompletion completion) override;
    std::optional<Token> facebookCurrentAccessToken() override { return tokens_.facebook; }
    void facebookRefreshCurrentAccessToken(Completion completion) override;
    bool googleHasCurrentUser() override { return tokens_.google.has_value(); }
    void googleGetTokens(TokenCompletion completion) override;
    void googleSignInSilently(TokenCompletion completion) override;

  private:
    const std::optional<Token>& tokenOf(Provider provider) const;
    static void answer(const std::optional<Token>& token, const TokenCompletion& completion);

    Tokens tokens_;
};

}  // namespace tb
