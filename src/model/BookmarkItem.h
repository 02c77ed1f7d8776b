#pragma once

#include <cstdint>

#include "model/ItemAttributes.h"
#include "model/store/ManagedObject.h"

namespace tb {

// One entry of the bookmarked queue: a field-by-field mirror of an Item's stored attributes
// (without `georestricted`) and its place in the queue. A stored entity ("BookmarkItem").
struct BookmarkItem final : ManagedObject, ItemAttributes {
    std::int64_t bookmarkIndex = 0;

    static const EntityDescription& entityDescription();
    const EntityDescription& entity() const override { return entityDescription(); }
};

}  // namespace tb
