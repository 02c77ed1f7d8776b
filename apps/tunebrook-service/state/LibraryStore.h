#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tunebrook-service/core/SqlValue.h"

namespace tb::service {

class Database;

struct PinnedEntity {
    std::string kind;  // "song", "album" or "playlist"
    int64_t id = 0;
};

// What an account keeps: favourites, reposts, follows, highlights and the list of music it
// told us it holds offline.
class LibraryStore {
  public:
    explicit LibraryStore(Database& db) : db_(db) {}

    // Each setter returns whether anything changed.
    bool setFavorite(int64_t accountId,
                     const std::string& kind,
                     int64_t itemId,
                     bool on,
                     double now);
    bool setRepost(int64_t accountId, int64_t musicId, bool on, double now);
    bool setFollow(int64_t accountId, int64_t artistId, bool on, double now);
    bool addDownload(int64_t accountId, int64_t musicId, double now);
    bool removeDownload(int64_t accountId, int64_t musicId);

    std::vector<int64_t> favoriteIds(int64_t accountId, const std::string& kind);
    std::vector<int64_t> repostIds(int64_t accountId);
    std::vector<int64_t> followingIds(int64_t accountId);
    bool follows(int64_t accountId, int64_t artistId);

    // Favourites newest first, as (kind, id) with kind "music" or "playlist".
    std::vector<std::pair<std::string, int64_t>> favorites(int64_t accountId);

    std::vector<PinnedEntity> pinned(int64_t accountId);
    void replacePinned(int64_t accountId, const std::vector<PinnedEntity>& entities);

  private:
    // Inserts the row when `on` and deletes it otherwise; true when a row changed.
    bool toggle(bool on,
                const std::string& insert,
                const std::string& remove,
                const SqlValues& keys,
                double now);
    std::vector<int64_t> ids(const std::string& sql, const SqlValues& values);
    Database& db_;
};

}  // namespace tb::service
