#pragma once

#include "model/store/ManagedObjectModel.h"

namespace tb {

// The app's model: every stored entity (Item, Artist, CachedItem, BookmarkStatus,
// BookmarkItem, PlaylistTracks).
class StoreModel {
  public:
    static ManagedObjectModel merged();
};

}  // namespace tb
