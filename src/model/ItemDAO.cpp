#include "model/ItemDAO.h"

#include <set>

#include "model/Item.h"
#include "model/ItemDownloadActivity.h"
#include "model/PlaylistTracks.h"
#include "model/TBCoreDataManager.h"
#include "model/store/EntityDescription.h"
#include "model/store/ObjectContext.h"

namespace tb {

namespace {

constexpr const char* kEntityName = "Item";

// Inserts a row with the item's attributes; nil values leave the row's defaults.
ItemPtr insertCopyOf(ObjectContext& context, const Item& item) {
    auto row = context.insertNewObject<Item>();
    EntityDescription::copyAttributes(item, *row, true);
    return row;
}

// The rows a write changed, named to the save so that it looks at nothing else: a save that
// had to find them would hash every record held, and long lists are held.
TBCoreDataManager::Changed changedRows(const std::vector<ItemPtr>& rows) {
    return {rows.begin(), rows.end()};
}

std::vector<std::string> idsOf(const std::vector<ItemPtr>& items) {
    std::vector<std::string> ids;
    for (const auto& item : items) {
        if (item && item->itemID) {
            ids.push_back(*item->itemID);
        }
    }
    return ids;
}

}  // namespace

ItemDAO::ItemDAO(TBCoreDataManager& saving) : saving_(saving) {}

std::int64_t ItemDAO::offlineDownloadsCount() {
    auto* context = saving_.context();
    if (!context) {
        return 0;
    }
    auto request = FetchRequest::fetchRequestWithEntityName(kEntityName);
    request.predicate = allDownloadsCompletedPredicate();
    return context->countForFetchRequest(request).value_or(0);
}

std::optional<ItemDAO::Items> ItemDAO::fetch(const Predicate& predicate,
                                             const std::vector<SortDescriptor>& sortDescriptors,
                                             const std::vector<std::string>& propertiesToFetch) {
    auto* context = saving_.context();
    if (!context) {
        return std::nullopt;
    }
    auto request = FetchRequest::fetchRequestWithEntityName(kEntityName);
    request.predicate = predicate;
    request.sortDescriptors = sortDescriptors;
    request.propertiesToFetch = propertiesToFetch;
    return context->fetch<Item>(request);
}

ItemPtr ItemDAO::newItem() {
    return saving_.context() ? std::make_shared<Item>() : nullptr;
}

ItemPtr ItemDAO::saveItem(const ItemPtr& item) {
    auto* context = saving_.context();
    if (!context || !item) {
        return item;
    }
    auto row = insertCopyOf(*context, *item);
    saving_.reportingSave("save", {});
    switch (item->itemType()) {
        case ItemType::album:
            // A track already on the device now belongs to the album's download.
            for (const auto& track : item->tracks) {
                if (!track) {
                    continue;
                }
                const std::string trackID = track->itemID.value_or("");
                TBCoreDataManager::Changed changed;
                if (auto existing = trackID.empty() ? nullptr : findByID(trackID)) {
                    existing->albumTrackDownloadedAsSingle = false;
                    changed.push_back(existing);
                } else {
                    insertCopyOf(*context, *track);
                }
                saving_.reportingSave("save - album track", changed);
            }
            break;
        case ItemType::playlist:
            // No look-up here: rows of playlist items may double, and the download removes
            // the duplicates of each song it starts.
            for (const auto& entry : item->items) {
                if (!entry) {
                    continue;
                }
                insertCopyOf(*context, *entry);
                saving_.reportingSave("save - playlist item", {});
            }
            break;
        default:
            break;
    }
    return row;
}

ItemPtr ItemDAO::findByID(const std::string& itemID) {
    return itemID.empty() ? nullptr : firstRowWithID(itemID);
}

void ItemDAO::removeDuplicateWithID(const std::string& itemID) {
    if (itemID.empty()) {
        return;
    }
    const auto rows = fetch(Predicate::withFormat("itemID == %@", {itemID}));
    if (!rows || rows->size() < 2) {
        return;
    }
    for (auto row = rows->begin() + 1; row != rows->end(); ++row) {
        if (downloads_) {
            downloads_->removeDownloadOf(*row, true);
        }
    }
}

void ItemDAO::updatePlaylist(const ItemPtr& playlist, const ItemPtr& from) {
    if (!playlist || !from) {
        return;
    }
    for (auto field : {&Item::title, &Item::image, &Item::lastUpdated, &Item::originalImage,
                       &Item::playlistImage, &Item::smallImage, &Item::songImage, &Item::banner}) {
        if ((*from).*field) {
            (*playlist).*field = (*from).*field;
        }
    }
    if (downloads_) {
        downloads_->cacheImagesOf(playlist);
    }

    const std::string playlistID = playlist->itemID.value_or("");
    const auto entries = PlaylistTracks::tracksForPlaylist(saving_, playlistID);
    if (!from->items.empty() && !entries.empty()) {
        const auto fresher = idsOf(from->items);
        const std::set<std::string> listed(fresher.begin(), fresher.end());
        // Finished tracks that the playlist dropped leave it; unfinished ones keep their
        // entries.
        std::vector<std::string> dropped;
        for (const auto& entry : entries) {
            const std::string trackID = entry->trackId.value_or("");
            if (!listed.count(trackID) && !trackID.empty() && isDownloadCompleted(trackID)) {
                dropped.push_back(trackID);
            }
        }
        for (const auto& trackID : dropped) {
            PlaylistTracks::deleteTrack(saving_, trackID, playlistID);
        }
    }
    saving_.save(nullptr, {playlist});
}

void ItemDAO::updateCommentsCountFor(const ItemPtr& item, std::int64_t count) {
    if (!item) {
        return;
    }
    item->commentsCount = count;
    saving_.save(nullptr, {item});
}

void ItemDAO::markAsDownloaded(const std::string& itemID) {
    if (itemID.empty()) {
        return;
    }
    auto row = firstRowWithID(itemID);
    if (row) {
        row->downloaded = true;
    }
    saving_.reportingSave("markAsDownloaded:itemId", changedRows({row}));
}

void ItemDAO::markAsDownloadCompleted(const std::string& itemID) {
    if (itemID.empty()) {
        return;
    }
    auto row = firstRowWithID(itemID);
    if (row) {
        row->downloaded = true;
        row->downloadCompleted = true;
        row->cached = false;
    }
    saving_.reportingSave("markAsDownloadCompleted:itemId", changedRows({row}));
}

void ItemDAO::markItemsAsSynced(const std::string& itemIDs) {
    Items rows;
    if (itemIDs.find(',') != std::string::npos) {
        // A list means the whole set was sent; its ids are not read.
        rows = fetch(offlineAllPredicate(), {SortDescriptor::sortDescriptorWithKey("artist", true)})
                   .value_or(Items{});
    } else if (itemIDs.empty()) {
        return;
    } else if (auto row = findByID(itemIDs)) {
        rows.push_back(std::move(row));
    }
    for (const auto& row : rows) {
        row->synced = true;
    }
    saving_.save(nullptr, changedRows(rows));
}

bool ItemDAO::exists(const Predicate& predicate) {
    auto* context = saving_.context();
    if (!context) {
        return false;
    }
    auto request = FetchRequest::fetchRequestWithEntityName(kEntityName);
    request.predicate = predicate;
    request.fetchLimit = 1;
    return context->countForFetchRequest(request).value_or(0) > 0;
}

bool ItemDAO::hasDownloadRow(const std::string& itemID) {
    return exists(Predicate::withFormat("(itemID == %@) && (downloaded == 1)", {itemID}));
}

ItemPtr ItemDAO::firstRowWithID(const std::string& itemID) {
    auto rows = fetch(Predicate::withFormat("itemID == %@", {itemID}));
    return rows && !rows->empty() ? rows->front() : nullptr;
}

}  // namespace tb
