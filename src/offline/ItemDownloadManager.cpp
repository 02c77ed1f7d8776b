#include "offline/ItemDownloadManager.h"

#include <filesystem>
#include <sstream>
#include <system_error>

#include "core/TBConstants.h"
#include "model/Item.h"
#include "model/ItemDAO.h"
#include "model/PlaylistTracks.h"
#include "model/TBCoreDataManager.h"
#include "model/TBDataManagerStore.h"
#include "model/store/ObjectContext.h"
#include "offline/TBMusicDownloadManager.h"
#include "platform/ErrorReporter.h"
#include "platform/NotificationCenter.h"
#include "platform/SharedInstance.h"

namespace tb {

ItemDownloadManager::ItemDownloadManager(Collaborators with, TBMusicDownloadManager& transfers)
    : with_(with), transfers_(transfers) {}

ItemDownloadManager& ItemDownloadManager::shared() {
    return SharedInstance<ItemDownloadManager>::get();
}

std::string ItemDownloadManager::documents() const {
    return with_.store.store().applicationDocumentsDirectory();
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
            PlaylistTracks::deletePlaylist(with_.store, item->itemID.value_or(""));
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
    transfers_.deleteCachedImagedFor(*item);
    if (removeFromDatabase) {
        if (auto* context = with_.store.context()) {
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
    transfers_.deleteCachedImagedFor(*playlist);
    if (auto* context = with_.store.context()) {
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
        if (auto row = with_.dao.findByID(id)) {
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
    for (const auto& entry :
         PlaylistTracks::tracksForPlaylist(with_.store, playlist->itemID.value_or(""))) {
        if (!entry->trackId || entry->trackId->empty()) {
            continue;
        }
        if (auto row = with_.dao.findByID(*entry->trackId)) {
            items.push_back(std::move(row));
        }
    }
    playlist->items = std::move(items);
    playlist->didChange();
}

void ItemDownloadManager::deleteAudioFileOf(const Item& item) {
    const std::string path = item.localFileURL(documents());
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return;
    }
    if (std::filesystem::remove(path, error); error) {
        with_.errors.recordError(
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
    transfers_.deleteCachedImagedFor(*track);
    if (auto* context = with_.store.context()) {
        context->deleteObject(track);
    }
}

void ItemDownloadManager::saveRemoval() {
    if (with_.store.reportingSave("remove")) {
        with_.notifications.post(TBConstants::TBGlobalNotifications().download);
    }
}

}  // namespace tb
