#include "tunebrook-service/state/AccountStore.h"

#include <set>

#include "tunebrook-service/auth/EmailRule.h"
#include "tunebrook-service/catalogue/Slug.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/state/RowReader.h"

namespace tb::service {

namespace {

const char* socialColumn(const std::string& provider) {
    if (provider == "facebook") {
        return "facebook_id";
    }
    if (provider == "google") {
        return "google_id";
    }
    if (provider == "twitter") {
        return "twitter_id";
    }
    return nullptr;
}

}  // namespace

std::optional<AccountRow> AccountStore::one(const std::string& where, const SqlValue& value) {
    auto rows = find(where, {value}, 0, 1);
    if (rows.empty()) {
        return std::nullopt;
    }
    return rows.front();
}

std::optional<AccountRow> AccountStore::byId(int64_t id) {
    return one("a.id = ?", id);
}

std::optional<AccountRow> AccountStore::bySlug(const std::string& slug) {
    return one("a.slug = ?", slug);
}

std::optional<AccountRow> AccountStore::byEmail(const std::string& email) {
    return one("a.email = ?", EmailRule::normalized(email));
}

std::optional<AccountRow> AccountStore::bySocial(const std::string& provider,
                                                 const std::string& socialId) {
    const char* column = socialColumn(provider);
    if (!column) {
        return std::nullopt;
    }
    return one(std::string("a.") + column + " = ?", socialId);
}

std::optional<std::string> AccountStore::passwordHash(int64_t id) {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare("SELECT password FROM accounts WHERE id = ?");
    statement.with(id);
    if (!statement.step() || statement.isNull(0)) {
        return std::nullopt;
    }
    return statement.text(0);
}

bool AccountStore::slugTaken(const std::string& slug) {
    return bySlug(slug).has_value();
}

std::optional<AccountRow> AccountStore::create(const NewAccount& account, double now) {
    std::lock_guard lock(db_.mutex());
    std::string base = Slug::from(account.name);
    std::string slug = base;
    for (int n = 2; slugTaken(slug); ++n) {
        slug = base.substr(0, 60) + "-" + std::to_string(n);
    }
    std::optional<std::string> email;
    if (account.email) {
        email = EmailRule::normalized(*account.email);
    }
    // A new listener's feed starts a month back, so the first visit has something new.
    auto statement = db_.prepare(
        "INSERT INTO accounts(slug, name, created, email, password, feed_seen) "
        "VALUES(?, ?, ?, ?, ?, ?)");
    statement.bind(1, slug).bind(2, account.name).bind(3, now).bind(4, email);
    statement.bind(5, account.passwordHash).bind(6, now - 30 * 86400.0);
    if (!statement.run()) {
        return std::nullopt;
    }
    int64_t id = db_.lastInsertId();
    if (!account.provider.empty() && !linkSocial(id, account.provider, account.socialId)) {
        return std::nullopt;
    }
    return byId(id);
}

bool AccountStore::linkSocial(int64_t id,
                              const std::string& provider,
                              const std::string& socialId) {
    const char* column = socialColumn(provider);
    if (!column) {
        return false;
    }
    std::lock_guard lock(db_.mutex());
    return db_.prepare(std::string("UPDATE accounts SET ") + column + " = ? WHERE id = ?")
        .with(socialId, id)
        .run();
}

void AccountStore::setPasswordHash(int64_t id, const std::string& hash) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE accounts SET password = ? WHERE id = ?").with(hash, id).run();
}

void AccountStore::setFeedSeen(int64_t id, double when) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE accounts SET feed_seen = ? WHERE id = ?").with(when, id).run();
}

bool AccountStore::updateProfile(int64_t id,
                                 const std::vector<std::pair<std::string, std::string>>& columns) {
    static const std::set<std::string> kProfileColumns = {
        "name",     "label",     "hometown", "website", "bio",   "twitter",
        "facebook", "instagram", "genre",    "youtube", "image", "banner"};
    if (columns.empty()) {
        return true;
    }
    std::string assignments;
    SqlValues values;
    for (const auto& [column, value] : columns) {
        if (!kProfileColumns.count(column)) {
            return false;
        }
        assignments += (assignments.empty() ? "" : ", ") + column + " = ?";
        values.emplace_back(value);
    }
    values.emplace_back(id);
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare("UPDATE accounts SET " + assignments + " WHERE id = ?");
    bindValues(statement, values);
    statement.run();
    return true;
}

std::vector<AccountRow> AccountStore::find(const std::string& whereAndOrder,
                                           const SqlValues& values,
                                           int offset,
                                           int limit) {
    std::vector<AccountRow> rows;
    db_.each("SELECT " + RowReader::accountColumns("a") + " FROM accounts a WHERE " +
                 whereAndOrder + RowReader::limit(offset, limit),
             values, [&](const Statement& row) { rows.push_back(RowReader::account(row, 0)); });
    return rows;
}

int64_t AccountStore::followersCount(int64_t id) {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare(
        "SELECT (SELECT base_followers FROM accounts WHERE id = ?1) + "
        "(SELECT COUNT(*) FROM follows WHERE artist_id = ?1)");
    statement.bind(1, id);
    return statement.step() ? statement.int64(0) : 0;
}

int64_t AccountStore::followingCount(int64_t id) {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare("SELECT COUNT(*) FROM follows WHERE account_id = ?");
    statement.with(id);
    return statement.step() ? statement.int64(0) : 0;
}

}  // namespace tb::service

namespace tb::service {

ArtistCounts AccountStore::counts(int64_t id, bool withPrivate) {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare(
        "SELECT "
        "(SELECT base_followers FROM accounts WHERE id = ?1) + "
        "(SELECT COUNT(*) FROM follows WHERE artist_id = ?1), "
        "(SELECT COUNT(*) FROM follows WHERE account_id = ?1), "
        "(SELECT COUNT(*) FROM favorites WHERE account_id = ?1), "
        "(SELECT COUNT(*) FROM playlists WHERE owner_id = ?1 AND (private = 0 OR ?2)), "
        "(SELECT COUNT(*) FROM music WHERE uploader_id = ?1 AND album_id = 0 "
        "  AND status = 'active'), "
        "(SELECT COUNT(*) FROM reposts WHERE account_id = ?1), "
        "(SELECT COALESCE(SUM(plays_total), 0) FROM music WHERE uploader_id = ?1 "
        "  AND type = 'song')");
    statement.bind(1, id).bind(2, withPrivate ? 1 : 0);
    ArtistCounts counts;
    if (statement.step()) {
        counts.followers = statement.int64(0);
        counts.following = statement.int64(1);
        counts.favorites = statement.int64(2);
        counts.playlists = statement.int64(3);
        counts.uploads = statement.int64(4);
        counts.reposts = statement.int64(5);
        counts.plays = statement.int64(6);
    }
    return counts;
}

}  // namespace tb::service
