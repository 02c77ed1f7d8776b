#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tunebrook-service/http/FormParams.h"

namespace tb::service {

struct SocialIdentity {
    std::string provider;  // "facebook", "google" or "twitter"
    std::string socialId;
    std::optional<std::string> providerEmail;  // what the provider told about the account
};

// Stands in for the outside sign-in providers. A token is valid when it has this form:
//   Facebook: "fb_user_id" = ID, "fb_token" = "fbtoken-ID" or "fbtoken-ID:EMAIL"
//   Google:   "g_token" = "gtoken-ID" or "gtoken-ID:EMAIL"
//   Twitter:  "t_token" = "ttoken-ID" or "ttoken-ID:EMAIL", "t_secret" = "tsecret-ID"
// ID is 1 to 64 of letters, digits, "_", "." and "-". EMAIL is the address the provider
// shares; without it, a new account needs "u_auth_email".
class SocialTokens {
  public:
    enum class Outcome { none, valid, invalid };
    static Outcome read(const std::vector<FormParam>& params, SocialIdentity& identity);
};

}  // namespace tb::service
