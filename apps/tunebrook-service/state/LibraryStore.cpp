#include "tunebrook-service/state/LibraryStore.h"

#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"

namespace tb::service {

bool LibraryStore::toggle(bool on,
                          const std::string& insert,
                          const std::string& remove,
                          const SqlValues& keys,
                          double now) {
    std::lock_guard lock(db_.mutex());
    SqlValues values = keys;
    if (on) {
        values.emplace_back(now);
    }
    auto statement = db_.prepare(on ? insert : remove);
    bindValues(statement, values);
    statement.run();
    return db_.changes() > 0;
}

bool LibraryStore::setFavorite(int64_t accountId,
                               const std::string& kind,
                               int64_t itemId,
                               bool on,
                               double now) {
    return toggle(on,
                  "INSERT OR IGNORE INTO favorites(account_id, kind, item_id, created) "
                  "VALUES(?, ?, ?, ?)",
                  "DELETE FROM favorites WHERE account_id = ? AND kind = ? AND item_id = ?",
                  {accountId, kind, itemId}, now);
}

bool LibraryStore::setRepost(int64_t accountId, int64_t musicId, bool on, double now) {
    return toggle(
        on, "INSERT OR IGNORE INTO reposts(account_id, music_id, created) VALUES(?, ?, ?)",
        "DELETE FROM reposts WHERE account_id = ? AND music_id = ?", {accountId, musicId}, now);
}

bool LibraryStore::setFollow(int64_t accountId, int64_t artistId, bool on, double now) {
    return toggle(
        on, "INSERT OR IGNORE INTO follows(account_id, artist_id, created) VALUES(?, ?, ?)",
        "DELETE FROM follows WHERE account_id = ? AND artist_id = ?", {accountId, artistId}, now);
}

bool LibraryStore::addDownload(int64_t accountId, int64_t musicId, double now) {
    return toggle(true,
                  "INSERT OR IGNORE INTO downloads(account_id, music_id, created) "
                  "VALUES(?, ?, ?)",
                  "", {accountId, musicId}, now);
}

bool LibraryStore::removeDownload(int64_t accountId, int64_t musicId) {
    return toggle(false, "", "DELETE FROM downloads WHERE account_id = ? AND music_id = ?",
                  {accountId, musicId}, 0);
}

std::vector<int64_t> LibraryStore::ids(const std::string& sql, const SqlValues& values) {
    std::vector<int64_t> out;
    db_.each(sql, values, [&](const Statement& row) { out.push_back(row.int64(0)); });
    return out;
}

std::vector<int64_t> LibraryStore::favoriteIds(int64_t accountId, const std::string& kind) {
    return ids(
        "SELECT item_id FROM favorites WHERE account_id = ? AND kind = ? ORDER BY created DESC",
        {accountId, kind});
}

std::vector<int64_t> LibraryStore::repostIds(int64_t accountId) {
    return ids("SELECT music_id FROM reposts WHERE account_id = ? ORDER BY created DESC",
               {accountId});
}

std::vector<int64_t> LibraryStore::followingIds(int64_t accountId) {
    return ids("SELECT artist_id FROM follows WHERE account_id = ? ORDER BY created DESC",
               {accountId});
}

bool LibraryStore::follows(int64_t accountId, int64_t artistId) {
    return !ids("SELECT 1 FROM follows WHERE account_id = ? AND artist_id = ?",
                {accountId, artistId})
                .empty();
}

std::vector<std::pair<std::string, int64_t>> LibraryStore::favorites(int64_t accountId) {
    std::vector<std::pair<std::string, int64_t>> out;
    db_.each(
        "SELECT kind, item_id FROM favorites WHERE account_id = ? ORDER BY created DESC, item_id",
        {accountId}, [&](const Statement& row) { out.emplace_back(row.text(0), row.int64(1)); });
    return out;
}

std::vector<PinnedEntity> LibraryStore::pinned(int64_t accountId) {
    std::vector<PinnedEntity> out;
    db_.each("SELECT kind, item_id FROM pinned WHERE account_id = ? ORDER BY position", {accountId},
             [&](const Statement& row) {
                 out.push_back({row.text(0), row.int64(1)});
             });
    return out;
}

void LibraryStore::replacePinned(int64_t accountId, const std::vector<PinnedEntity>& entities) {
    Transaction transaction(db_);
    db_.prepare("DELETE FROM pinned WHERE account_id = ?").with(accountId).run();
    int64_t position = 0;
    for (const auto& entity : entities) {
        db_.prepare(
               "INSERT OR IGNORE INTO pinned(account_id, kind, item_id, position) "
               "VALUES(?, ?, ?, ?)")
            .with(accountId, entity.kind, entity.id, position++)
            .run();
    }
    transaction.commit();
}

}  // namespace tb::service
