#pragma once

#include <string>

#include "model/ItemAttributes.h"

namespace tb {

// What the store's queries need to know of the offline downloads, which sit above the
// model: what is on its way, and the removals and loads that take files and artwork along.
// The offline layer implements it; the app hands it to ItemDAO.
class ItemDownloadActivity {
  public:
    virtual ~ItemDownloadActivity() = default;

    virtual bool isItemBeingDownloaded(const std::string& itemID) const = 0;
    virtual bool isAlbumBeingDownloaded(const Item& album) const = 0;
    virtual bool isPlaylistBeingDownloaded(const ItemPtr& playlist) = 0;
    // Queues the fetch of the item's artwork.
    virtual void cacheImagesOf(const ItemPtr& item) = 0;
    // ItemDownloadManager's removal and album load.
    virtual void removeDownloadOf(const ItemPtr& item, bool removeFromDatabase) = 0;
    virtual void loadAlbumTracksFor(const ItemPtr& album, bool force) = 0;
};

}  // namespace tb
