#include "offline/TBMusicDownloadManager.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "model/Item.h"
#include "model/TBUtil.h"
#include "offline/ItemDownloadManager.h"
#include "offline/TBDownloadImageOperation.h"
#include "platform/SharedInstance.h"

namespace tb {

TBMusicDownloadManager::TBMusicDownloadManager(MainQueue& queue,
                                               HttpTransport& http,
                                               ItemDownloadManager::Collaborators items)
    : queue_(queue),
      http_(http),
      items_(items, *this),
      operationQueue_(queue, "TBMusicDownloadManager-downloadQueue", 1),
      imageDownloadQueue_(queue, "TBMusicDownloadManager-imageDownloadQueue", 1) {}

TBMusicDownloadManager& TBMusicDownloadManager::sharedManager() {
    return SharedInstance<TBMusicDownloadManager>::get();
}

void TBMusicDownloadManager::cacheImages(const ItemPtr& item,
                                         const std::shared_ptr<TBOperation>& parentOperation) {
    auto operation =
        std::make_shared<TBDownloadImageOperation>(http_, queue_, items_.documents(), item);
    if (parentOperation) {
        operation->addDependency(parentOperation);
    }
    imageDownloadQueue_.addOperation(std::move(operation));
}

void TBMusicDownloadManager::deleteCachedImagedFor(const Item& item) {
    const std::string documents = items_.documents();
    for (const auto& url : {item.image, item.smallImage, item.originalImage, item.banner}) {
        if (url && !url->empty()) {
            std::error_code ignored;
            std::filesystem::remove(TBUtil::remoteUrlToArtworkFile(*url, documents), ignored);
        }
    }
}

bool TBMusicDownloadManager::isItemBeingDownloaded(const std::string& itemID) const {
    return downloadsInProgress_.count(itemID) > 0;
}

bool TBMusicDownloadManager::isAlbumBeingDownloaded(const Item& album) const {
    return anyBeingDownloaded(album.tracks);
}

bool TBMusicDownloadManager::isPlaylistBeingDownloaded(const ItemPtr& playlist) {
    if (!playlist) {
        return false;
    }
    items_.loadPlaylistItemsFor(playlist);
    return anyBeingDownloaded(playlist->items);
}

void TBMusicDownloadManager::setItemBeingDownloaded(const std::string& itemID, bool downloaded) {
    if (downloaded) {
        downloadsInProgress_.erase(itemID);
    } else {
        downloadsInProgress_.insert(itemID);
    }
}

bool TBMusicDownloadManager::anyBeingDownloaded(const std::vector<ItemPtr>& items) const {
    return std::any_of(items.begin(), items.end(), [&](const ItemPtr& item) {
        return item && item->itemID && isItemBeingDownloaded(*item->itemID);
    });
}

}  // namespace tb
