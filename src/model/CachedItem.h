#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "model/store/ManagedObject.h"
#include "model/store/StoreTypes.h"

namespace tb {

// One file of the stream cache. A stored entity ("CachedItem").
struct CachedItem final : ManagedObject {
    std::optional<std::string> itemID;
    std::optional<std::string> filePath;  // file name inside the caches directory: <id>.mp3
    std::int64_t fileSize = 0;            // bytes; 0 if unknown
    std::optional<Date> lastUsed;         // set at creation and by touch

    static const EntityDescription& entityDescription();
    const EntityDescription& entity() const override { return entityDescription(); }
};

}  // namespace tb
