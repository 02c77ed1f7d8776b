#include "offline/ItemDownloadManager.h"

#include <filesystem>
#include <sstream>
#include <system_error>

#include "api/TBDataManager.h"
#include "app/AppContext.h"
#include "core/TBConstants.h"
#include "model/Item.h"
#include "model/ItemDAO.h"
#include "model/PlaylistTracks.h"
#include "model/TBCoreDataManager.h"
#include "model/store/ObjectContext.h"
#include "offline/TBMusicDownloadManager.h"
#include "platform/ErrorReporter.h"
#include "platform/NotificationCenter.h"

namespace tb {

namespace {

ObjectContext* store() {
    return TBDataManager::sharedManager().managedObjectContext().get();
}

}  // namespace

ItemDownloadManager::ItemDownloadManager(AppContext& context) : context_(context) {}

ItemDownloadManager& ItemDownloadManager::shared() {
    return AppContext::current().singleton<ItemDownloadManager>();
}

void ItemDownloadManager::removeDownloadOf(const ItemPtr& item, bool removeFromDatabase) {
    if (!item) {
        return;
    }
    deleteAudioFileOf(*item);
    switch (item->itemType()) {
        case ItemType::playlist:
            loadPlaylistItemsFor(item);
            for (const auto& track : item->items) {
                removeTrack(track);
            }
            PlaylistTracks::deletePlaylist(item->itemID.value_or(""));
            break;
        case ItemType::album:
            loadAlbumTracksFor(item, true);
            for (const auto& track : item->tracks) {
                removeTrack(track);
            }
            break;
        default:
            break;
    }
    context_.singleton<TBMusicDownloadManager>().deleteCachedImagedFor(*item);
    if (removeFromDatabase) {
        if (auto* context = store()) {
            context->deleteObject(item);
        }
    } else {
        item->downloadDate.reset();
        item->downloaded = false;
        item->downloadCompleted = false;
        item->didChange();
    }
    saveRemoval();
}

void ItemDownloadManager::removePlaylistAndKeepTracks(const ItemPtr& playlist) {
    if (!playlist) {
        return;
    }
    context_.singleton<TBMusicDownloadManager>().deleteCachedImagedFor(*playlist);
    if (auto* context = store()) {
        context->deleteObject(playlist);
    }
    saveRemoval();
}

void ItemDownloadManager::loadAlbumTracksFor(const ItemPtr& album, bool force) {
    if (!album || album->itemType() != ItemType::album || !album->tracksIDs ||
        album->tracksIDs->empty()) {
        return;
    }
    if (!force && !album->tracks.empty()) {
        return;
    }
    std::vector<ItemPtr> tracks;
    std::istringstream ids(*album->tracksIDs);
    for (std::string id; std::getline(ids, id, ',');) {
        if (id.empty()) {
            continue;
        }
        if (auto row = ItemDAO::findByID(id)) {
            tracks.push_back(std::move(row));
        }
    }
    album->tracks = std::move(tracks);
    album->didChange();
}

void ItemDownloadManager::loadPlaylistItemsFor(const ItemPtr& playlist) {
    if (!playlist || playlist->itemType() != ItemType::playlist) {
        return;
    }
    std::vector<ItemPtr> items;
    for (const auto& entry : PlaylistTracks::tracksForPlaylist(playlist->itemID.value_or(""))) {
        if (!entry->trackId || entry->trackId->empty()) {
            continue;
        }
        if (auto row = ItemDAO::findByID(*entry->trackId)) {
            items.push_back(std::move(row));
        }
    }
    playlist->items = std::move(items);
    playlist->didChange();
}

void ItemDownloadManager::deleteAudioFileOf(const Item& item) {
    const std::string path = item.localFileURL(context_.paths().documents);
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return;
    }
    if (std::filesystem::remove(path, error); error) {
        context_.errorReporter().recordError(
            Error{"NSCocoaErrorDomain", error.value(), error.message(), {{"NSFilePath", path}}});
    }
}

void ItemDownloadManager::removeTrack(const ItemPtr& track) {
    if (!track) {
        return;
    }
    track->downloaded = false;
    track->downloadCompleted = false;
    deleteAudioFileOf(*track);
    context_.singleton<TBMusicDownloadManager>().deleteCachedImagedFor(*track);
    if (auto* context = store()) {
        context->deleteObject(track);
    }
}

void ItemDownloadManager::saveRemoval() {
    if (context_.singleton<TBCoreDataManager>().reportingSave("remove")) {
        context_.notificationCenter().post(TBConstants::TBGlobalNotifications().download);
    }
}

}  // namespace tb
