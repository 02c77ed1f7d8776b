#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tunebrook-service/core/SqlValue.h"
#include "tunebrook-service/state/MusicRow.h"
#include "tunebrook-service/state/PlaylistRow.h"

namespace tb::service {

class Database;

// Playlists (alias "p", owner "o"), their tracks and their tags.
class PlaylistStore {
  public:
    explicit PlaylistStore(Database& db) : db_(db) {}

    std::optional<PlaylistRow> byId(int64_t id);
    std::optional<PlaylistRow> bySlug(const std::string& ownerSlug, const std::string& slug);
    std::vector<PlaylistRow> find(const std::string& whereAndOrder,
                                  const SqlValues& values,
                                  int offset,
                                  int limit);
    std::vector<MusicRow> tracks(int64_t playlistId);
    bool contains(int64_t playlistId, int64_t musicId);
    std::vector<std::string> tags();
    bool tagExists(const std::string& tag);
    void addToCounter(int64_t id, const std::string& counter, int delta);

  private:
    Database& db_;
};

}  // namespace tb::service
