// The offline lists of ItemDAO: their predicates, ids, playlists, search and sorting.

#include <algorithm>

#include "model/Item.h"
#include "model/ItemDAO.h"
#include "model/PlaylistTracks.h"

namespace tb {

const Predicate& ItemDAO::cachedItemsPredicate() {
    return predicates_.cachedItems;
}

const Predicate& ItemDAO::unsyncedDownloadsPredicate() {
    return predicates_.unsyncedDownloads;
}

const Predicate& ItemDAO::offlineIdsPredicate() {
    return predicates_.offlineIds;
}

const Predicate& ItemDAO::offlineAllPredicate() {
    return predicates_.offlineAll;
}

const Predicate& ItemDAO::offlineSongsPredicate() {
    return predicates_.offlineSongs;
}

const Predicate& ItemDAO::offlineAlbumsPredicate() {
    return predicates_.offlineAlbums;
}

const Predicate& ItemDAO::offlinePlaylistsPredicate() {
    return predicates_.offlinePlaylists;
}

const Predicate& ItemDAO::allDownloadsCompletedPredicate() {
    return predicates_.allDownloadsCompleted;
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
        const auto count = PlaylistTracks::playlistsTrackCount(saving_, row->itemID.value_or(""));
        // A stored field: written with the next save, but only when the count moved, so
        // showing the list rewrites nothing.
        if (row->playlistTracksCount != count) {
            row->playlistTracksCount = count;
            row->didChange();
        }
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

std::vector<std::string> ItemDAO::fetchIds(const Predicate& predicate) {
    std::vector<std::string> ids;
    const auto rows = fetch(predicate, {}, {"itemID"});
    if (!rows) {
        return ids;
    }
    for (const auto& row : *rows) {
        ids.push_back(row->itemID.value_or(""));
    }
    return ids;
}

}  // namespace tb
