#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tb::service {

class Database;

struct TokenRecord {
    std::string token;
    std::string secret;
    int64_t accountId = 0;
    double expires = 0;
};

// Access tokens handed out at login. There is no refresh token: an expired token is only
// replaced by a fresh login, which is what the admin calls that expire tokens make happen.
class TokenStore {
  public:
    explicit TokenStore(Database& db) : db_(db) {}

    TokenRecord issue(int64_t accountId, double now, double lifetimeSeconds);
    std::optional<TokenRecord> find(const std::string& token);
    // Each returns the number of tokens that were still valid and now are not.
    int expireAll(double now);
    int expireAccount(int64_t accountId, double now);
    int expireToken(const std::string& token, double now);
    // Revoked tokens are gone: a request with one is refused as with an unknown token. Each
    // returns the number of tokens removed.
    int revokeAccount(int64_t accountId);
    int revokeToken(const std::string& token);

  private:
    Database& db_;
};

}  // namespace tb::service
