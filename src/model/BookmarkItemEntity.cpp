#include <utility>

#include "model/BookmarkItem.h"
#include "model/Item.h"
#include "model/ItemAttributesTable.h"

namespace tb {

const EntityDescription& BookmarkItem::entityDescription() {
    static const EntityDescription entity = [] {
        EntityBuilder<BookmarkItem> bookmark("BookmarkItem");
        describeItemAttributes(bookmark);
        bookmark.attribute("bookmarkIndex", &BookmarkItem::bookmarkIndex);
        return std::move(bookmark).build();
    }();
    return entity;
}

}  // namespace tb
