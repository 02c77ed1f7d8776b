#include "tunebrook-service/auth/SocialTokens.h"

#include "tunebrook-service/auth/EmailRule.h"

namespace tb::service {

namespace {

bool validId(const std::string& id) {
    return !id.empty() && id.size() <= 64 &&
           id.find_first_not_of(
               "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
               "0123456789_.-") == std::string::npos;
}

// Splits "<prefix>ID[:EMAIL]" into the identity; false when the token has another form.
bool readToken(const std::string& token, const std::string& prefix, SocialIdentity& identity) {
    if (token.compare(0, prefix.size(), prefix) != 0) {
        return false;
    }
    std::string rest = token.substr(prefix.size());
    size_t colon = rest.find(':');
    identity.socialId = rest.substr(0, colon);
    if (colon != std::string::npos) {
        std::string email = rest.substr(colon + 1);
        if (!EmailRule::valid(email)) {
            return false;
        }
        identity.providerEmail = email;
    }
    return validId(identity.socialId);
}

}  // namespace

SocialTokens::Outcome SocialTokens::read(const std::vector<FormParam>& params,
                                         SocialIdentity& identity) {
    if (auto fbId = FormParams::find(params, "fb_user_id")) {
        identity.provider = "facebook";
        auto token = FormParams::find(params, "fb_token").value_or("");
        bool ok = readToken(token, "fbtoken-", identity) && identity.socialId == *fbId;
        return ok ? Outcome::valid : Outcome::invalid;
    }
    if (auto token = FormParams::find(params, "g_token")) {
        identity.provider = "google";
        return readToken(*token, "gtoken-", identity) ? Outcome::valid : Outcome::invalid;
    }
    if (auto token = FormParams::find(params, "t_token")) {
        identity.provider = "twitter";
        auto secret = FormParams::find(params, "t_secret").value_or("");
        bool ok =
            readToken(*token, "ttoken-", identity) && secret == "tsecret-" + identity.socialId;
        return ok ? Outcome::valid : Outcome::invalid;
    }
    return Outcome::none;
}

}  // namespace tb::service
