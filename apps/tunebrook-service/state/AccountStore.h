#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tunebrook-service/core/SqlValue.h"
#include "tunebrook-service/state/AccountRow.h"
#include "tunebrook-service/state/ArtistCounts.h"

namespace tb::service {

class Database;

struct NewAccount {
    std::string name;
    std::optional<std::string> email;
    std::optional<std::string> passwordHash;
    std::string provider;  // "" or "facebook", "google", "twitter"
    std::string socialId;
};

// Accounts and their credentials. Passwords are only ever stored as salted hashes.
class AccountStore {
  public:
    explicit AccountStore(Database& db) : db_(db) {}

    std::optional<AccountRow> byId(int64_t id);
    std::optional<AccountRow> bySlug(const std::string& slug);
    std::optional<AccountRow> byEmail(const std::string& email);
    std::optional<AccountRow> bySocial(const std::string& provider, const std::string& socialId);
    std::optional<std::string> passwordHash(int64_t id);
    bool slugTaken(const std::string& slug);

    // A listener's account, its slug made from the name and kept unique.
    std::optional<AccountRow> create(const NewAccount& account, double now);
    void setPasswordHash(int64_t id, const std::string& hash);
    bool linkSocial(int64_t id, const std::string& provider, const std::string& socialId);
    void setFeedSeen(int64_t id, double when);
    // Sets the public profile columns given ("name", "bio", "website", "image", ...), all in
    // one statement. A column outside the profile stops the call: nothing is written.
    bool updateProfile(int64_t id, const std::vector<std::pair<std::string, std::string>>& columns);

    // Accounts matching `where` (over alias "a"), in the given order.
    std::vector<AccountRow> find(const std::string& whereAndOrder,
                                 const SqlValues& values,
                                 int offset,
                                 int limit);
    int64_t followersCount(int64_t id);
    int64_t followingCount(int64_t id);
    // The profile counters; private playlists count only when `withPrivate`.
    ArtistCounts counts(int64_t id, bool withPrivate);

  private:
    std::optional<AccountRow> one(const std::string& where, const SqlValue& value);
    Database& db_;
};

}  // namespace tb::service
