#include <utility>

#include "model/BookmarkStatus.h"
#include "model/store/EntityBuilder.h"

namespace tb {

const EntityDescription& BookmarkStatus::entityDescription() {
    static const EntityDescription entity = [] {
        EntityBuilder<BookmarkStatus> status("BookmarkStatus");
        status.attribute("itemID", &BookmarkStatus::itemID);
        status.attribute("playbackPosition", &BookmarkStatus::playbackPosition);
        status.attribute("bookmarkDate", &BookmarkStatus::bookmarkDate, AttributeType::date);
        status.attribute("screenType", &BookmarkStatus::screenType);
        status.attribute("entityID", &BookmarkStatus::entityID);
        return std::move(status).build();
    }();
    return entity;
}

}  // namespace tb
