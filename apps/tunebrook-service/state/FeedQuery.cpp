#include "tunebrook-service/state/FeedQuery.h"

#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/state/MusicStore.h"
#include "tunebrook-service/state/RowReader.h"

namespace tb::service {

namespace {

const char* const kFollowed = "(SELECT artist_id FROM follows WHERE account_id = ?1)";

std::string uploads(const std::string& columns) {
    return "SELECT " + columns + " FROM music m JOIN accounts u ON u.id = m.uploader_id " +
           "WHERE m.album_id = 0 AND m.status = 'active' AND m.uploader_id IN " + kFollowed;
}

std::string reposts(const std::string& columns) {
    return "SELECT " + columns +
           " FROM reposts r JOIN music m ON m.id = r.music_id "
           "JOIN accounts u ON u.id = m.uploader_id JOIN accounts ra ON ra.id = r.account_id "
           "WHERE m.status = 'active' AND r.account_id IN " +
           kFollowed;
}

}  // namespace

std::vector<MusicRow> FeedQuery::page(MusicStore& music,
                                      int64_t accountId,
                                      bool onlyUploads,
                                      int offset,
                                      int limit) {
    std::string rowColumns = RowReader::musicColumns("m") + ", " + RowReader::accountColumns("u");
    std::string sql = uploads(rowColumns + ", '' AS reposter, m.released AS ts");
    if (!onlyUploads) {
        sql += " UNION ALL " + reposts(rowColumns + ", ra.name, r.created");
    }
    sql += " ORDER BY ts DESC LIMIT ?2 OFFSET ?3";
    return music.findWithReposts(
        sql, {accountId, static_cast<int64_t>(limit), static_cast<int64_t>(offset)});
}

int64_t FeedQuery::countSince(Database& db, int64_t accountId, double since) {
    std::lock_guard lock(db.mutex());
    std::string sql = "SELECT COUNT(*) FROM (" + uploads("m.released AS ts") + " UNION ALL " +
                      reposts("r.created") + ") WHERE ts > ?2";
    auto statement = db.prepare(sql);
    statement.bind(1, accountId).bind(2, since);
    return statement.step() ? statement.int64(0) : 0;
}

}  // namespace tb::service
