#include <utility>

#include "model/CachedItem.h"
#include "model/store/EntityBuilder.h"

namespace tb {

const EntityDescription& CachedItem::entityDescription() {
    static const EntityDescription entity = [] {
        EntityBuilder<CachedItem> cachedItem("CachedItem");
        cachedItem.attribute("itemID", &CachedItem::itemID).indexed();
        cachedItem.attribute("filePath", &CachedItem::filePath);
        cachedItem.attribute("fileSize", &CachedItem::fileSize);
        cachedItem.attribute("lastUsed", &CachedItem::lastUsed, AttributeType::date);
        return std::move(cachedItem).build();
    }();
    return entity;
}

}  // namespace tb
