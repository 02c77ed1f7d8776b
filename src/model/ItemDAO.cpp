#include "model/ItemDAO.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include <nlohmann/json.hpp>

#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "app/AppContext.h"
#include "model/Item.h"
#include "model/ItemPredicates.h"
#include "model/PlaylistTracks.h"
#include "model/TBCoreDataManager.h"
#include "model/store/EntityDescription.h"
#include "model/store/ObjectContext.h"
#include "offline/ItemDownloadManager.h"
#include "offline/TBDownloadImageOperation.h"
#include "offline/TBMusicDownloadManager.h"

namespace tb {

namespace {

constexpr const char* kEntityName = "Item";
// Smaller files are the error pages and cut transfers of a failed download.
constexpr std::uintmax_t kSmallestPlayableFile = 10240;

ObjectContext* store() {
    return TBDataManager::sharedManager().managedObjectContext().get();
}

TBCoreDataManager& saving() {
    return TBCoreDataManager::sharedManager();
}

TBMusicDownloadManager& transfers() {
    return TBMusicDownloadManager::sharedManager();
}

bool exists(const Predicate& predicate) {
    auto* context = store();
    if (!context) {
        return false;
    }
    auto request = FetchRequest::fetchRequestWithEntityName(kEntityName);
    request.predicate = predicate;
    request.fetchLimit = 1;
    return context->countForFetchRequest(request).value_or(0) > 0;
}

// "(itemID == %@) && (downloaded == 1)": the item is wanted on the device.
bool hasDownloadRow(const std::string& itemID) {
    return exists(Predicate::withFormat("(itemID == %@) && (downloaded == 1)", {itemID}));
}

ItemPtr firstRowWithID(const std::string& itemID) {
    auto rows = ItemDAO::fetch(Predicate::withFormat("itemID == %@", {itemID}));
    return rows && !rows->empty() ? rows->front() : nullptr;
}

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

std::vector<std::string> fetchIds(const Predicate& predicate) {
    std::vector<std::string> ids;
    const auto rows = ItemDAO::fetch(predicate, {}, {"itemID"});
    if (!rows) {
        return ids;
    }
    for (const auto& row : *rows) {
        ids.push_back(row->itemID.value_or(""));
    }
    return ids;
}

}  // namespace

std::optional<ItemDAO::Items> ItemDAO::fetch(const Predicate& predicate,
                                             const std::vector<SortDescriptor>& sortDescriptors,
                                             const std::vector<std::string>& propertiesToFetch) {
    auto* context = store();
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
    return store() ? std::make_shared<Item>() : nullptr;
}

ItemPtr ItemDAO::saveItem(const ItemPtr& item) {
    auto* context = store();
    if (!context || !item) {
        return item;
    }
    auto row = insertCopyOf(*context, *item);
    saving().reportingSave("save", {});
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
                saving().reportingSave("save - album track", changed);
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
                saving().reportingSave("save - playlist item", {});
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
        ItemDownloadManager(AppContext::current()).removeDownloadOf(*row, true);
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
    transfers().imageDownloadQueue().addOperation(
        std::make_shared<TBDownloadImageOperation>(AppContext::current(), playlist));

    const std::string playlistID = playlist->itemID.value_or("");
    const auto entries = PlaylistTracks::tracksForPlaylist(playlistID);
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
            PlaylistTracks::deleteTrack(trackID, playlistID);
        }
    }
    saving().save(nullptr, {playlist});
}

void ItemDAO::updateCommentsCountFor(const ItemPtr& item, std::int64_t count) {
    if (!item) {
        return;
    }
    item->commentsCount = count;
    saving().save(nullptr, {item});
}

std::optional<ItemDAO::Items> ItemDAO::cachedItems() {
    return fetch(cachedItemsPredicate(),
                 {SortDescriptor::sortDescriptorWithKey("downloadDate", false)});
}

std::int64_t ItemDAO::countDownloadedTracks(const std::vector<std::string>& itemIDs) {
    auto* context = store();
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
    const std::string path =
        item.localFileURL(TBDataManager::sharedManager().applicationDocumentsDirectory());
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return !error && size > kSmallestPlayableFile;
}

bool ItemDAO::isAlbumFullyDownloaded(const ItemPtr& album) {
    if (!album || !isDownloaded(album->itemID.value_or(""))) {
        return false;
    }
    ItemDownloadManager(AppContext::current()).loadAlbumTracksFor(album, false);
    return std::all_of(album->tracks.begin(), album->tracks.end(), [](const ItemPtr& track) {
        return track && isDownloadCompleted(track->itemID.value_or(""));
    });
}

bool ItemDAO::isPlaylistFullyDownloaded(const ItemPtr& playlist) {
    if (!playlist || !findByID(playlist->itemID.value_or(""))) {
        return false;
    }
    const auto entries = PlaylistTracks::tracksForPlaylist(*playlist->itemID);
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
    if (!item) {
        return false;
    }
    switch (item->itemType()) {
        case ItemType::playlist:
            return transfers().isPlaylistBeingDownloaded(item);
        case ItemType::album:
            return transfers().isAlbumBeingDownloaded(*item);
        default:
            return item->itemID && transfers().isItemBeingDownloaded(*item->itemID);
    }
}

bool ItemDAO::isDownloadFailedFor(const ItemPtr& item) {
    if (!item) {
        return false;
    }
    const std::string itemID = item->itemID.value_or("");
    if (item->itemType() != ItemType::album) {
        return hasDownloadRow(itemID) && !isDownloadCompleted(itemID) &&
               !transfers().isItemBeingDownloaded(itemID);
    }
    const bool complete = isAlbumFullyDownloaded(item);
    if (transfers().isAlbumBeingDownloaded(*item)) {
        return false;
    }
    return hasDownloadRow(itemID) && !complete;
}

void ItemDAO::markAsDownloaded(const std::string& itemID) {
    if (itemID.empty()) {
        return;
    }
    auto row = firstRowWithID(itemID);
    if (row) {
        row->downloaded = true;
    }
    saving().reportingSave("markAsDownloaded:itemId", changedRows({row}));
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
    saving().reportingSave("markAsDownloadCompleted:itemId", changedRows({row}));
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
    saving().save(nullptr, changedRows(rows));
}

std::optional<std::string> ItemDAO::getImageUrlForPresetFrom(const Item& item, int preset) {
    const std::optional<std::string>& chosen = preset == 0   ? item.smallImage
                                               : preset == 1 ? item.originalImage
                                                             : item.image;
    if (!chosen) {
        return std::nullopt;
    }
    return chosen->empty() ? item.image : chosen;
}

bool ItemDAO::playlistContainsTrackFor(const Item& playlist, const Item& track) {
    if (!track.itemID) {
        return false;
    }
    return std::any_of(playlist.items.begin(), playlist.items.end(), [&](const ItemPtr& entry) {
        return entry && entry->itemID == track.itemID;
    });
}

void ItemDAO::refreshInfoFor(const ItemPtr& item, RefreshSuccess success, RefreshFailure failure) {
    if (!item) {
        return;
    }
    auto answered = [item, success, failure](const ItemPtr& result) {
        const auto done = [&](const ItemPtr& with) {
            if (success) {
                success(with);
            }
        };
        // An answer without tracks (a song, a playlist) carries the address itself; no
        // answer at all leaves the item without one.
        if (!result || result->tracks.empty()) {
            item->url = result ? result->url : std::nullopt;
            done(result);
            return;
        }
        const bool isAlbum = item->itemType() == ItemType::album;
        for (const auto& entry : result->tracks) {
            if (!entry) {
                continue;
            }
            const bool same = entry->itemID && item->itemID && *entry->itemID == *item->itemID;
            if (!same && !isAlbum) {
                continue;
            }
            item->url = entry->url;
            item->uploaderSlug = result->uploaderSlug;
            item->urlSlug = result->urlSlug;
            if (same) {
                done(result);
                return;
            }
        }
        // An album has no entry of its own: it keeps what its last track gave it.
        if (isAlbum) {
            done(item);
        } else if (failure) {
            failure(std::nullopt);
        }
    };
    auto failed = [failure](const TBFailureInfo& info) {
        if (failure) {
            failure(info.error);
        }
    };
    auto& data = TBDataManager::sharedManager();
    const auto params = nlohmann::json::object();
    const std::string itemID = item->itemID.value_or("");
    switch (item->itemType()) {
        case ItemType::albumTrack:
            data.getAlbumInfoWithIdentifier(item->parentID.value_or(""), params, answered, failed);
            return;
        case ItemType::song:
        case ItemType::playlistTrack:
            data.getSongInfoWithIdentifier(itemID, params, answered, failed);
            return;
        case ItemType::album:
            data.getAlbumInfoWithIdentifier(itemID, params, answered, failed);
            return;
        case ItemType::playlist:
            data.getPlaylistInfo(itemID, params, answered, failed);
            return;
        default:
            // Nothing the service could be asked about: neither block is called.
            return;
    }
}

const Predicate& ItemDAO::cachedItemsPredicate() {
    return ItemPredicates::current().cachedItems;
}

const Predicate& ItemDAO::unsyncedDownloadsPredicate() {
    return ItemPredicates::current().unsyncedDownloads;
}

const Predicate& ItemDAO::offlineIdsPredicate() {
    return ItemPredicates::current().offlineIds;
}

const Predicate& ItemDAO::offlineAllPredicate() {
    return ItemPredicates::current().offlineAll;
}

const Predicate& ItemDAO::offlineSongsPredicate() {
    return ItemPredicates::current().offlineSongs;
}

const Predicate& ItemDAO::offlineAlbumsPredicate() {
    return ItemPredicates::current().offlineAlbums;
}

const Predicate& ItemDAO::offlinePlaylistsPredicate() {
    return ItemPredicates::current().offlinePlaylists;
}

const Predicate& ItemDAO::allDownloadsCompletedPredicate() {
    return ItemPredicates::current().allDownloadsCompleted;
}

std::vector<std::string> ItemDAO::unsyncedDownloadsIds() {
    return fetchIds(unsyncedDownloadsPredicate());
}

std::vector<std::string> ItemDAO::offlineIds() {
    return fetchIds(offlineIdsPredicate());
}

std::optional<ItemDAO::Items> ItemDAO::offlinePlaylists(category::OfflineSorting sorting) {
    auto rows = fetch(offlinePlaylistsPredicate(), {sortDescriptorFor(sorting)});
    for (const auto& row : rows.value_or(Items{})) {
        row->playlistTracksCount = PlaylistTracks::playlistsTrackCount(row->itemID.value_or(""));
    }
    return rows;
}

Predicate ItemDAO::offlineSearchPredicateFor(const std::string& query) {
    return Predicate::andPredicateWithSubpredicates({
        Predicate::withFormat("downloaded == 1"),
        Predicate::withFormat("isSong == 1 || isAlbum == 1 || isAlbumTrack == 1"),
        Predicate::withFormat("title CONTAINS[cd] %@ || artist CONTAINS[cd] %@", {query, query}),
        Predicate::withFormat("cached == NULL || cached == 0"),
    });
}

SortDescriptor ItemDAO::sortDescriptorFor(category::OfflineSorting sorting) {
    switch (sorting) {
        case category::OfflineSorting::oldest:
            return SortDescriptor::sortDescriptorWithKey("downloadDate", true);
        case category::OfflineSorting::alphabetical:
            return SortDescriptor::sortDescriptorWithKey("artist", true);
        default:
            return SortDescriptor::sortDescriptorWithKey("downloadDate", false);
    }
}

}  // namespace tb
