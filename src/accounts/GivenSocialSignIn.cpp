#include "accounts/GivenSocialSignIn.h"

#include <fstream>
#include <sstream>

#include "platform/JSON.h"

namespace tb {

namespace {

constexpr const char* kErrorDomain = "SocialSignIn";
constexpr std::int64_t kNotSignedIn = 1;

Error notSignedIn() {
    return Error{kErrorDomain, kNotSignedIn, "No account of this provider was given", {}};
}

std::optional<std::string> nonEmpty(const JSON& value) {
    auto text = value.string();
    return text && !text->empty() ? text : std::nullopt;
}

std::optional<SocialSignIn::Token> tokenFrom(const JSON& entry, bool needsId, bool needsSecret) {
    SocialSignIn::Token token;
    const auto text = nonEmpty(entry["token"]);
    token.socialId = nonEmpty(entry["id"]);
    token.socialSecret = nonEmpty(entry["secret"]);
    if (!text || (needsId && !token.socialId) || (needsSecret && !token.socialSecret)) {
        return std::nullopt;
    }
    token.socialToken = *text;
    token.socialEmail = nonEmpty(entry["email"]);
    token.expired = entry["expired"].boolValue();
    return token;
}

}  // namespace

GivenSocialSignIn::Tokens GivenSocialSignIn::tokensFrom(const JSON& document) {
    return Tokens{tokenFrom(document["facebook"], true, false),
                  tokenFrom(document["google"], false, false),
                  tokenFrom(document["twitter"], false, true)};
}

GivenSocialSignIn::Tokens GivenSocialSignIn::tokensFromFile(const std::string& path) {
    if (path.empty()) {
        return {};
    }
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return file ? tokensFrom(JSON::parse(text.str())) : Tokens{};
}

const std::optional<SocialSignIn::Token>& GivenSocialSignIn::tokenOf(Provider provider) const {
    switch (provider) {
        case Provider::facebook:
            return tokens_.facebook;
        case Provider::google:
            return tokens_.google;
        case Provider::twitter:
            break;
    }
    return tokens_.twitter;
}

void GivenSocialSignIn::answer(const std::optional<Token>& token,
                               const TokenCompletion& completion) {
    if (completion) {
        completion(token, token ? std::nullopt : std::optional<Error>(notSignedIn()));
    }
}

// The listener "picks" the given account; without one the sign-in counts as cancelled.
void GivenSocialSignIn::signIn(Provider provider, TokenCompletion completion) {
    if (completion) {
        completion(tokenOf(provider), std::nullopt);
    }
}

void GivenSocialSignIn::facebookRefreshCurrentAccessToken(Completion completion) {
    if (tokens_.facebook) {
        tokens_.facebook->expired = false;
    }
    if (completion) {
        completion(tokens_.facebook ? std::nullopt : std::optional<Error>(notSignedIn()));
    }
}

void GivenSocialSignIn::googleGetTokens(TokenCompletion completion) {
    answer(tokens_.google, completion);
}

void GivenSocialSignIn::googleSignInSilently(TokenCompletion completion) {
    answer(tokens_.google, completion);
}

}  // namespace tb
