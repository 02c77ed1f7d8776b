#include "tunebrook-service/state/TokenStore.h"

#include "tunebrook-service/core/Crypto.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"

namespace tb::service {

TokenRecord TokenStore::issue(int64_t accountId, double now, double lifetimeSeconds) {
    // Letters and digits only, so that the token reads the same through every layer of
    // escaping the clients put around it.
    TokenRecord record{Crypto::randomAlphanumeric(32), Crypto::randomAlphanumeric(40), accountId,
                       now + lifetimeSeconds};
    std::lock_guard lock(db_.mutex());
    db_.prepare(
           "INSERT INTO tokens(token, secret, account_id, created, expires) "
           "VALUES(?, ?, ?, ?, ?)")
        .with(record.token, record.secret, accountId, now, record.expires)
        .run();
    return record;
}

std::optional<TokenRecord> TokenStore::find(const std::string& token) {
    std::lock_guard lock(db_.mutex());
    auto statement =
        db_.prepare("SELECT token, secret, account_id, expires FROM tokens WHERE token = ?");
    statement.with(token);
    if (!statement.step()) {
        return std::nullopt;
    }
    return TokenRecord{statement.text(0), statement.text(1), statement.int64(2), statement.real(3)};
}

int TokenStore::expireAll(double now) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE tokens SET expires = ? WHERE expires > ?").with(now - 1, now).run();
    return db_.changes();
}

int TokenStore::expireAccount(int64_t accountId, double now) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE tokens SET expires = ? WHERE account_id = ? AND expires > ?")
        .with(now - 1, accountId, now)
        .run();
    return db_.changes();
}

int TokenStore::expireToken(const std::string& token, double now) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE tokens SET expires = ? WHERE token = ? AND expires > ?")
        .with(now - 1, token, now)
        .run();
    return db_.changes();
}

int TokenStore::revokeAccount(int64_t accountId) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("DELETE FROM tokens WHERE account_id = ?").with(accountId).run();
    return db_.changes();
}

int TokenStore::revokeToken(const std::string& token) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("DELETE FROM tokens WHERE token = ?").with(token).run();
    return db_.changes();
}

}  // namespace tb::service
