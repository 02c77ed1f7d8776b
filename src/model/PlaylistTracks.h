#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "model/store/ManagedObject.h"

namespace tb {

// One track of an offline playlist. A stored entity ("PlaylistTracks"). Membership is by id
// alone: no uniqueness, no relationship; a track row is shared by every playlist listing it.
struct PlaylistTracks final : ManagedObject {
    std::optional<std::string> playlistId;  // itemID of the playlist's Item row
    std::optional<std::string> trackId;     // itemID of the track's Item row
    std::int64_t number = 0;                // 0-based position; gaps stay after deletes

    static const EntityDescription& entityDescription();
    const EntityDescription& entity() const override { return entityDescription(); }
};

}  // namespace tb
