// The download state queries of ItemDAO: what is on the device, complete, failed or on its
// way.

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "model/Item.h"
#include "model/ItemDAO.h"
#include "model/ItemDownloadActivity.h"
#include "model/PlaylistTracks.h"
#include "model/TBCoreDataManager.h"
#include "model/TBDataManagerStore.h"
#include "model/store/ObjectContext.h"

namespace tb {

namespace {

constexpr const char* kEntityName = "Item";
// Smaller files are the error pages and cut transfers of a failed download.
constexpr std::uintmax_t kSmallestPlayableFile = 10240;

}  // namespace

std::optional<ItemDAO::Items> ItemDAO::cachedItems() {
    return fetch(cachedItemsPredicate(),
                 {SortDescriptor::sortDescriptorWithKey("downloadDate", false)});
}

std::int64_t ItemDAO::countDownloadedTracks(const std::vector<std::string>& itemIDs) {
    auto* context = saving_.context();
    const bool anyEmpty = std::any_of(itemIDs.begin(), itemIDs.end(),
                                      [](const std::string& id) { return id.empty(); });
    if (!context || anyEmpty) {
        return 0;
    }
    auto request = FetchRequest::fetchRequestWithEntityName(kEntityName);
    request.predicate = Predicate::withFormat(
        "(downloaded == 1) && (downloadCompleted == 1) && (itemID IN %@)", {itemIDs});
    return context->countForFetchRequest(request).value_or(0);
}

bool ItemDAO::isDownloaded(const std::string& itemID) {
    return !itemID.empty() && hasDownloadRow(itemID);
}

bool ItemDAO::isDownloadCompleted(const std::string& itemID) {
    return !itemID.empty() &&
           exists(Predicate::withFormat(
               "(itemID == %@) && (downloaded == 1) && (downloadCompleted == 1)", {itemID}));
}

bool ItemDAO::isDownloadedFileOkFor(const Item& item) {
    const std::string path = item.localFileURL(saving_.store().applicationDocumentsDirectory());
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return !error && size > kSmallestPlayableFile;
}

bool ItemDAO::isAlbumFullyDownloaded(const ItemPtr& album) {
    if (!album || !isDownloaded(album->itemID.value_or(""))) {
        return false;
    }
    if (downloads_) {
        downloads_->loadAlbumTracksFor(album, false);
    }
    return std::all_of(album->tracks.begin(), album->tracks.end(), [this](const ItemPtr& track) {
        return track && isDownloadCompleted(track->itemID.value_or(""));
    });
}

bool ItemDAO::isPlaylistFullyDownloaded(const ItemPtr& playlist) {
    if (!playlist || !findByID(playlist->itemID.value_or(""))) {
        return false;
    }
    const auto entries = PlaylistTracks::tracksForPlaylist(saving_, *playlist->itemID);
    if (entries.empty()) {
        return false;
    }
    // Duplicates stay in: a playlist listing one track twice never counts as complete.
    std::vector<std::string> trackIDs;
    for (const auto& entry : entries) {
        trackIDs.push_back(entry->trackId.value_or(""));
    }
    return countDownloadedTracks(trackIDs) == static_cast<std::int64_t>(trackIDs.size());
}

bool ItemDAO::isDownloadCompletedIdependentlyFromTypeFor(const ItemPtr& item) {
    if (!item) {
        return false;
    }
    switch (item->itemType()) {
        case ItemType::album:
            return isAlbumFullyDownloaded(item);
        case ItemType::playlist:
            return isPlaylistFullyDownloaded(item);
        default:
            return isDownloadCompleted(item->itemID.value_or(""));
    }
}

bool ItemDAO::isBeingDownloadedIndependentlyFromTypeFor(const ItemPtr& item) {
    if (!item || !downloads_) {
        return false;
    }
    switch (item->itemType()) {
        case ItemType::playlist:
            return downloads_->isPlaylistBeingDownloaded(item);
        case ItemType::album:
            return downloads_->isAlbumBeingDownloaded(*item);
        default:
            return item->itemID && downloads_->isItemBeingDownloaded(*item->itemID);
    }
}

bool ItemDAO::isDownloadFailedFor(const ItemPtr& item) {
    if (!item) {
        return false;
    }
    const std::string itemID = item->itemID.value_or("");
    if (item->itemType() != ItemType::album) {
        return hasDownloadRow(itemID) && !isDownloadCompleted(itemID) &&
               !(downloads_ && downloads_->isItemBeingDownloaded(itemID));
    }
    const bool complete = isAlbumFullyDownloaded(item);
    if (downloads_ && downloads_->isAlbumBeingDownloaded(*item)) {
        return false;
    }
    return hasDownloadRow(itemID) && !complete;
}

}  // namespace tb
