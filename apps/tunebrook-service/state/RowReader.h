#pragma once

#include <string>

#include "tunebrook-service/state/AccountRow.h"
#include "tunebrook-service/state/MusicRow.h"
#include "tunebrook-service/state/PlaylistRow.h"

namespace tb::service {

class Statement;

// The column lists of the three catalogue records and their readers, so that every query
// selects the same columns in the same order. A record's columns start at `first`.
class RowReader {
  public:
    static constexpr int kAccountColumns = 20;
    static constexpr int kMusicColumns = 28;
    static constexpr int kPlaylistColumns = 13;

    static std::string accountColumns(const std::string& alias);
    static std::string musicColumns(const std::string& alias);
    static std::string playlistColumns(const std::string& alias);

    // "SELECT <music>, <uploader> FROM music m JOIN accounts u ON u.id = m.uploader_id"
    static std::string selectMusic();
    // "SELECT <playlist>, <owner> FROM playlists p JOIN accounts o ON o.id = p.owner_id"
    static std::string selectPlaylists();

    // " LIMIT <limit> OFFSET <offset>" of numbers the service computed itself.
    static std::string limit(int offset, int limit);

    static AccountRow account(const Statement& row, int first);
    static MusicRow music(const Statement& row, int first);
    static PlaylistRow playlist(const Statement& row, int first);
};

}  // namespace tb::service
