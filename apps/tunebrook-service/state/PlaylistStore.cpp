#include "tunebrook-service/state/PlaylistStore.h"

#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/state/RowReader.h"

namespace tb::service {

std::optional<PlaylistRow> PlaylistStore::byId(int64_t id) {
    auto rows = find("p.id = ?", {id}, 0, 1);
    if (rows.empty()) {
        return std::nullopt;
    }
    return rows.front();
}

std::optional<PlaylistRow> PlaylistStore::bySlug(const std::string& ownerSlug,
                                                 const std::string& slug) {
    auto rows = find("o.slug = ? AND p.slug = ?", {ownerSlug, slug}, 0, 1);
    if (rows.empty()) {
        return std::nullopt;
    }
    return rows.front();
}

std::vector<PlaylistRow> PlaylistStore::find(const std::string& whereAndOrder,
                                             const SqlValues& values,
                                             int offset,
                                             int limit) {
    std::vector<PlaylistRow> rows;
    db_.each(
        RowReader::selectPlaylists() + " WHERE " + whereAndOrder + RowReader::limit(offset, limit),
        values, [&](const Statement& row) { rows.push_back(RowReader::playlist(row, 0)); });
    return rows;
}

std::vector<MusicRow> PlaylistStore::tracks(int64_t playlistId) {
    std::vector<MusicRow> rows;
    db_.each(RowReader::selectMusic() +
                 " JOIN playlist_tracks t ON t.music_id = m.id "
                 "WHERE t.playlist_id = ? ORDER BY t.position",
             {playlistId}, [&](const Statement& row) { rows.push_back(RowReader::music(row, 0)); });
    return rows;
}

bool PlaylistStore::contains(int64_t playlistId, int64_t musicId) {
    std::lock_guard lock(db_.mutex());
    auto statement =
        db_.prepare("SELECT 1 FROM playlist_tracks WHERE playlist_id = ? AND music_id = ? LIMIT 1");
    statement.with(playlistId, musicId);
    return statement.step();
}

std::vector<std::string> PlaylistStore::tags() {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare("SELECT tag FROM tags ORDER BY position");
    std::vector<std::string> tags;
    while (statement.step()) {
        tags.push_back(statement.text(0));
    }
    return tags;
}

bool PlaylistStore::tagExists(const std::string& tag) {
    std::lock_guard lock(db_.mutex());
    auto statement = db_.prepare("SELECT 1 FROM tags WHERE tag = ?");
    statement.with(tag);
    return statement.step();
}

void PlaylistStore::addToCounter(int64_t id, const std::string& counter, int delta) {
    if (counter != "favorites" && counter != "plays") {
        return;
    }
    std::lock_guard lock(db_.mutex());
    db_.prepare("UPDATE playlists SET " + counter + " = MAX(0, " + counter + " + ?) WHERE id = ?")
        .with(delta, id)
        .run();
}

}  // namespace tb::service
