#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tunebrook-service/core/SqlValue.h"
#include "tunebrook-service/state/MusicRow.h"

namespace tb::service {

class Database;

// Songs and albums, with their uploader. Queries are put together from fixed fragments over
// the aliases "m" (music) and "u" (uploader); request values only arrive as bound values.
class MusicStore {
  public:
    explicit MusicStore(Database& db) : db_(db) {}

    std::optional<MusicRow> byId(int64_t id);
    std::optional<MusicRow> bySlug(const std::string& artistSlug,
                                   const std::string& type,
                                   const std::string& slug);
    std::vector<MusicRow> albumTracks(int64_t albumId);
    std::vector<MusicRow> find(const std::string& whereAndOrder,
                               const SqlValues& values,
                               int offset,
                               int limit);
    // Rows of a query that selects the music columns, the uploader's, and then the name of
    // the reposting account and the time of the repost (the feed).
    std::vector<MusicRow> findWithReposts(const std::string& sql, const SqlValues& values);

    // The place of the item among all songs or albums by plays in the period, from 1.
    int64_t rank(const MusicRow& row, const std::string& period);

    // Counts a play for every period; with a session, only the first play of a song per
    // session counts. Returns whether this one counted.
    // Counts a play of `id`; with a session, only when that session's last counted play of it
    // is at least `replayAfter` seconds old.
    bool countPlay(int64_t id, const std::string* session, double now, double replayAfter);
    bool setStatus(int64_t id, const std::string& status, std::optional<bool> geoRestricted);
    void addToCounter(int64_t id, const std::string& counter, int delta);

  private:
    Database& db_;
};

}  // namespace tb::service
