#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "tunebrook-service/state/AccountRow.h"
#include "tunebrook-service/state/MusicRow.h"
#include "tunebrook-service/state/PlaylistRow.h"

namespace tb::service {

class AccountStore;
class ItemJson;
class LibraryStore;
class MusicStore;
class PlaylistStore;

// Turns rows into the answers' JSON, fetching what an item needs beyond its row: an album's
// tracks, an artist's counters and highlights.
class CatalogueView {
  public:
    CatalogueView(const ItemJson& json,
                  MusicStore& music,
                  PlaylistStore& playlists,
                  AccountStore& accounts,
                  LibraryStore& library)
        : json_(json),
          music_(music),
          playlists_(playlists),
          accounts_(accounts),
          library_(library) {}

    nlohmann::json music(const MusicRow& row) const;
    // With the ranks of every period, for the answer about one item.
    nlohmann::json musicDetail(const MusicRow& row) const;
    nlohmann::json musicList(const std::vector<MusicRow>& rows) const;
    nlohmann::json playlist(const PlaylistRow& row, bool withTracks) const;
    nlohmann::json playlistList(const std::vector<PlaylistRow>& rows) const;
    nlohmann::json artist(const AccountRow& row, bool self) const;
    nlohmann::json artistList(const std::vector<AccountRow>& rows) const;
    // The account's highlights, skipping any that are gone or hidden.
    nlohmann::json pinned(int64_t accountId, std::optional<int64_t> viewer) const;

    static bool visible(const PlaylistRow& row, std::optional<int64_t> viewer) {
        return !row.isPrivate || (viewer && *viewer == row.owner.id);
    }

  private:
    const ItemJson& json_;
    MusicStore& music_;
    PlaylistStore& playlists_;
    AccountStore& accounts_;
    LibraryStore& library_;
};

}  // namespace tb::service
