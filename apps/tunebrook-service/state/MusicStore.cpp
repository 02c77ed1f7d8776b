#include "tunebrook-service/state/MusicStore.h"

#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/state/RowReader.h"

namespace tb::service {

namespace {

// Column names that callers may name; anything else is refused before it reaches SQL.
std::optional<std::string> periodColumn(const std::string& period) {
    if (period == "daily" || period == "weekly" || period == "monthly" || period == "yearly") {
        return "plays_" + period;
    }
    if (period == "total") {
        return std::string("plays_total");
    }
    return std::nullopt;
}

bool counterAllowed(const std::string& counter) {
    return counter == "favorites" || counter == "reposts" || counter == "playlisted";
}

}  // namespace

std::optional<MusicRow> MusicStore::byId(int64_t id) {
    auto rows = find("m.id = ?", {id}, 0, 1);
    if (rows.empty()) {
        return std::nullopt;
    }
    return rows.front();
}

std::optional<MusicRow> MusicStore::bySlug(const std::string& artistSlug,
                                           const std::string& type,
                                           const std::string& slug) {
    auto rows = find("u.slug = ? AND m.type = ? AND m.slug = ?", {artistSlug, type, slug}, 0, 1);
    if (rows.empty()) {
        return std::nullopt;
    }
    return rows.front();
}

std::vector<MusicRow> MusicStore::albumTracks(int64_t albumId) {
    return find("m.album_id = ? AND m.type = 'song' ORDER BY m.track_number", {albumId}, 0, 100);
}

std::vector<MusicRow> MusicStore::find(const std::string& whereAndOrder,
                                       const SqlValues& values,
                                       int offset,
                                       int limit) {
    std::vector<MusicRow> rows;
    db_.each(RowReader::selectMusic() + " WHERE " + whereAndOrder + RowReader::limit(offset, limit),
             values, [&](const Statement& row) { rows.push_back(RowReader::music(row, 0)); });
    return rows;
}

std::vector<MusicRow> MusicStore::findWithReposts(const std::string& sql, const SqlValues& values) {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare(sql);
    bindValues(statement, values);
    std::vector<MusicRow> rows;
    constexpr int kRepostColumn = RowReader::kMusicColumns + RowReader::kAccountColumns;
    while (statement.step()) {
        MusicRow row = RowReader::music(statement, 0);
        row.repostedBy = statement.text(kRepostColumn);
        row.repostedAt = statement.real(kRepostColumn + 1);
        rows.push_back(std::move(row));
    }
    return rows;
}

int64_t MusicStore::rank(const MusicRow& row, const std::string& period) {
    auto column = periodColumn(period);
    if (!column) {
        return 0;
    }
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare("SELECT COUNT(*) + 1 FROM music WHERE type = ? AND " + *column +
                                 " > (SELECT " + *column + " FROM music WHERE id = ?)");
    statement.with(row.type, row.id);
    return statement.step() ? statement.int64(0) : 0;
}

bool MusicStore::countPlay(int64_t id, const std::string* session, double now, double replayAfter) {
    std::lock_guard lock(db_.mutex());
    if (session) {
        // One count per device and song while the song could still be the same listening;
        // a play after that window is a new one.
        db_.prepare(
               "INSERT INTO play_sessions(session, music_id, created) VALUES(?, ?, ?) "
               "ON CONFLICT(session, music_id) DO UPDATE SET created = excluded.created "
               "WHERE play_sessions.created <= excluded.created - ?")
            .with(*session, id, now, replayAfter)
            .run();
        if (db_.changes() == 0) {
            return false;
        }
    }
    db_.prepare(
           "UPDATE music SET plays_daily = plays_daily + 1, plays_weekly = plays_weekly + 1, "
           "plays_monthly = plays_monthly + 1, plays_yearly = plays_yearly + 1, "
           "plays_total = plays_total + 1 WHERE id = ?")
        .with(id)
        .run();
    return true;
}

bool MusicStore::setStatus(int64_t id,
                           const std::string& status,
                           std::optional<bool> geoRestricted) {
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE music SET status = ? WHERE id = ?").with(status, id).run();
    bool changed = db_.changes() > 0;
    if (geoRestricted) {
        db_.prepare("UPDATE music SET geo_restricted = ? WHERE id = ?")
            .with(*geoRestricted ? 1 : 0, id)
            .run();
    }
    return changed;
}

void MusicStore::addToCounter(int64_t id, const std::string& counter, int delta) {
    if (!counterAllowed(counter)) {
        return;
    }
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE music SET " + counter + " = MAX(0, " + counter + " + ?) WHERE id = ?")
        .with(delta, id)
        .run();
}

}  // namespace tb::service
