#pragma once

#include <memory>
#include <set>
#include <string>

#include "model/ItemAttributes.h"
#include "model/ItemDownloadActivity.h"
#include "offline/ItemDownloadManager.h"
#include "offline/OperationQueue.h"

namespace tb {

class HttpTransport;
class MainQueue;
class TBOperation;

// Owns the transfer queues of offline music and knows what is running: one song and one
// artwork operation at a time, and the ids of the songs on their way. All of it lives for
// the process only: after a restart nothing is in progress. It is the download activity the
// store's queries ask about, and owns the ItemDownloadManager that removes downloads.
class TBMusicDownloadManager final : public ItemDownloadActivity {
  public:
    TBMusicDownloadManager(MainQueue& queue,
                           HttpTransport& http,
                           ItemDownloadManager::Collaborators items);
    TBMusicDownloadManager(const TBMusicDownloadManager&) = delete;
    TBMusicDownloadManager& operator=(const TBMusicDownloadManager&) = delete;

    static TBMusicDownloadManager& sharedManager();

    ItemDownloadManager& items() { return items_; }

    // "TBMusicDownloadManager-downloadQueue" and "TBMusicDownloadManager-imageDownloadQueue",
    // one operation at a time each.
    OperationQueue& operationQueue() { return operationQueue_; }
    OperationQueue& imageDownloadQueue() { return imageDownloadQueue_; }

    // The ids of the songs queued or transferring.
    const std::set<std::string>& downloadsInProgress() const { return downloadsInProgress_; }

    // Queues the fetch of the item's artwork, after `parentOperation` when one is given.
    void cacheImages(const ItemPtr& item, const std::shared_ptr<TBOperation>& parentOperation);
    // Removes the item's artwork files; what can't be removed stays. (The name's spelling
    // is the operation's.)
    void deleteCachedImagedFor(const Item& item);

    bool isItemBeingDownloaded(const std::string& itemID) const override;
    // Any of the album's tracks.
    bool isAlbumBeingDownloaded(const Item& album) const override;
    // Any of the playlist's items, loaded from the store first.
    bool isPlaylistBeingDownloaded(const ItemPtr& playlist) override;
    // `downloaded` true: the id leaves the set; false: it joins it.
    void setItemBeingDownloaded(const std::string& itemID, bool downloaded);

    // The rest of the activity the store asks for.
    void cacheImagesOf(const ItemPtr& item) override { cacheImages(item, nullptr); }
    void removeDownloadOf(const ItemPtr& item, bool removeFromDatabase) override {
        items_.removeDownloadOf(item, removeFromDatabase);
    }
    void loadAlbumTracksFor(const ItemPtr& album, bool force) override {
        items_.loadAlbumTracksFor(album, force);
    }

  private:
    bool anyBeingDownloaded(const std::vector<ItemPtr>& items) const;

    MainQueue& queue_;
    HttpTransport& http_;
    ItemDownloadManager items_;
    OperationQueue operationQueue_;
    OperationQueue imageDownloadQueue_;
    std::set<std::string> downloadsInProgress_;
};

}  // namespace tb
