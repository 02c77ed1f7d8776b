#include "model/StoreModel.h"

#include "model/Artist.h"
#include "model/BookmarkItem.h"
#include "model/BookmarkStatus.h"
#include "model/CachedItem.h"
#include "model/Item.h"
#include "model/PlaylistTracks.h"

namespace tb {

ManagedObjectModel StoreModel::merged() {
    return ManagedObjectModel({
        &Item::entityDescription(),
        &Artist::entityDescription(),
        &CachedItem::entityDescription(),
        &BookmarkStatus::entityDescription(),
        &BookmarkItem::entityDescription(),
        &PlaylistTracks::entityDescription(),
    });
}

}  // namespace tb
