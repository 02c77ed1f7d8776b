#include "tunebrook-service/state/NotificationStore.h"

#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"

namespace tb::service {

void NotificationStore::add(int64_t accountId, const NotificationRow& row) {
    std::lock_guard lock(db_.mutex());
    db_.prepare(
           "INSERT INTO notifications(account_id, verb, actor_id, object_kind, object_id, "
           "target_id, comment, parent, created, seen) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .with(accountId, row.verb, row.actorId, row.objectKind, row.objectId, row.targetId,
              row.comment, row.parent, row.created, row.seen ? 1 : 0)
        .run();
}

std::vector<NotificationRow> NotificationStore::list(int64_t accountId,
                                                     bool onlyUnseen,
                                                     int offset,
                                                     int limit) {
    std::lock_guard lock(db_.mutex());
    std::string sql =
        "SELECT id, verb, actor_id, object_kind, object_id, target_id, comment, parent, created, "
        "seen FROM notifications WHERE account_id = ?";
    if (onlyUnseen) {
        sql += " AND seen = 0";
    }
    sql += " ORDER BY created DESC, id DESC LIMIT ? OFFSET ?";
    auto statement = db_.prepare(sql);
    statement.with(accountId, limit, offset);
    std::vector<NotificationRow> rows;
    while (statement.step()) {
        NotificationRow row;
        row.id = statement.int64(0);
        row.verb = statement.text(1);
        row.actorId = statement.int64(2);
        row.objectKind = statement.text(3);
        row.objectId = statement.int64(4);
        row.targetId = statement.int64(5);
        row.comment = statement.text(6);
        row.parent = statement.text(7);
        row.created = statement.real(8);
        row.seen = statement.int64(9) != 0;
        rows.push_back(std::move(row));
    }
    return rows;
}

int64_t NotificationStore::unseenCount(int64_t accountId) {
    std::lock_guard lock(db_.mutex());
    auto statement =
        db_.prepare("SELECT COUNT(*) FROM notifications WHERE account_id = ? AND seen = 0");
    statement.with(accountId);
    return statement.step() ? statement.int64(0) : 0;
}

int NotificationStore::markAllSeen(int64_t accountId) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE notifications SET seen = 1 WHERE account_id = ? AND seen = 0")
        .with(accountId)
        .run();
    return db_.changes();
}

}  // namespace tb::service
