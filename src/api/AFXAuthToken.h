#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace tb {

// An access token of the service: key, secret and expiration (seconds since 1970).
class AFXAuthToken {
  public:
    AFXAuthToken(std::string key, std::string secret, std::int64_t expiration);

    // From a login answer: "oauth_token", "oauth_token_secret", "oauth_token_expiration"
    // (a number or numeric text). Nothing for a null, a non-object or an empty object; a
    // missing member reads as "" or 0.
    static std::optional<AFXAuthToken> initWithDict(const nlohmann::json& dictionary);

    // The archived form: {"key", "secret", "expiration"}.
    nlohmann::json encodeWithCoder() const;
    static std::optional<AFXAuthToken> initWithCoder(const nlohmann::json& archive);

    const std::string& key() const { return key_; }
    const std::string& secret() const { return secret_; }
    std::int64_t expiration() const { return expiration_; }

    bool operator==(const AFXAuthToken&) const = default;

  private:
    std::string key_;
    std::string secret_;
    std::int64_t expiration_ = 0;
};

}  // namespace tb
