#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "model/store/ManagedObject.h"
#include "model/store/StoreTypes.h"

namespace tb {

// Where the listener was: the current song, the position in it and the screen. A stored
// entity ("BookmarkStatus") with at most one row.
struct BookmarkStatus final : ManagedObject {
    std::optional<std::string> itemID;
    std::int64_t playbackPosition = 0;      // milliseconds
    std::optional<Date> bookmarkDate;       // the last write of either kind
    std::optional<std::string> screenType;  // "playlist", "album", or nil for any other screen
    std::optional<std::string> entityID;    // id of that playlist or album

    static const EntityDescription& entityDescription();
    const EntityDescription& entity() const override { return entityDescription(); }
};

}  // namespace tb
