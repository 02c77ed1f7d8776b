#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/store/ManagedObject.h"

namespace tb {

struct Item;
class TBCoreDataManager;

// One track of an offline playlist. A stored entity ("PlaylistTracks"). Membership is by id
// alone: no uniqueness, no relationship; a track row is shared by every playlist listing it.
struct PlaylistTracks final : ManagedObject {
    std::optional<std::string> playlistId;  // itemID of the playlist's Item row
    std::optional<std::string> trackId;     // itemID of the track's Item row
    std::int64_t number = 0;                // 0-based position; gaps stay after deletes

    static const EntityDescription& entityDescription();
    const EntityDescription& entity() const override { return entityDescription(); }

    // The table's operations, on the store that `store` saves, through which they save.
    // Without a store they answer empty or 0 and write nothing.

    // The playlist's rows in `number` order.
    static std::vector<std::shared_ptr<PlaylistTracks>> tracksForPlaylist(
        TBCoreDataManager& store,
        const std::string& playlistId);
    // Replaces the playlist's rows by one per entry of its `items`, numbered from 0, saving
    // after every row (offline playlists are small).
    static void savePlaylist(TBCoreDataManager& store, const Item& playlist);
    // Adds one row, without looking for an existing one, and saves.
    static void saveEntryForPlaylist(TBCoreDataManager& store,
                                     const std::string& playlistId,
                                     const std::string& trackId,
                                     std::int64_t number);
    // The playlists that list the track, once per row: a playlist listing it twice comes
    // twice.
    static std::vector<std::string> playlistsThatContain(TBCoreDataManager& store,
                                                         const std::string& trackId);
    // The number of the playlist's rows, counted without reading them; 0 on any error.
    static std::int64_t playlistsTrackCount(TBCoreDataManager& store,
                                            const std::string& playlistId);
    // The two deletes leave the save to the caller, which saves once the larger change
    // they belong to is done. Positions are not renumbered: gaps stay.
    static void deletePlaylist(TBCoreDataManager& store, const std::string& playlistId);
    static void deleteTrack(TBCoreDataManager& store,
                            const std::string& trackId,
                            const std::string& fromPlaylistId);
};

}  // namespace tb
