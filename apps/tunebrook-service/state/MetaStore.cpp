#include "tunebrook-service/state/MetaStore.h"

#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"

namespace tb::service {

std::optional<std::string> MetaStore::get(const std::string& key) {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare("SELECT value FROM meta WHERE key = ?");
    statement.with(key);
    if (!statement.step()) {
        return std::nullopt;
    }
    return statement.text(0);
}

bool MetaStore::set(const std::string& key, const std::string& value) {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare(
        "INSERT INTO meta(key, value) VALUES(?, ?) "
        "ON CONFLICT(key) DO UPDATE SET value = excluded.value");
    return statement.with(key, value).run();
}

}  // namespace tb::service
