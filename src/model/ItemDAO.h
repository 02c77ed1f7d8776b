#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/ItemAttributes.h"
#include "model/ItemPredicates.h"
#include "model/TBCategory.h"
#include "model/store/Predicate.h"
#include "model/store/SortDescriptor.h"
#include "platform/Error.h"

namespace tb {

class ItemDownloadActivity;
class TBCoreDataManager;

// Every query over the stored `Item` rows: what is downloaded, what is complete, what the
// offline lists show. No other code writes predicates over Item.
//
// The operations work on the one context of the store that `saving` saves. Without a
// context they answer nil, 0, false or empty and write nothing; a fetch that fails is an
// empty answer. "id" arguments are service ids; an empty id is the same as none. Those that
// need no store are static.
class ItemDAO {
  public:
    using Items = std::vector<ItemPtr>;

    explicit ItemDAO(TBCoreDataManager& saving);
    ItemDAO(const ItemDAO&) = delete;
    ItemDAO& operator=(const ItemDAO&) = delete;

    // The downloads above the store, which the app connects once both exist (they use this
    // DAO). Without them nothing counts as on its way, and removals and loads do nothing.
    void setDownloadActivity(ItemDownloadActivity* downloads) { downloads_ = downloads; }

    // A record of the entity that belongs to no context (a value); nil without a context.
    ItemPtr newItem();
    // Stores a detached (or foreign) item as a new row and answers the row; the argument
    // itself without a context. An album's tracks get rows too (an existing track row is
    // taken over by the album's download); a playlist's items always get new rows, which
    // may double up: removeDuplicateWithID cleans them.
    ItemPtr saveItem(const ItemPtr& item);
    ItemPtr findByID(const std::string& itemID);
    // Keeps the first row of the id; the others go, with their downloads.
    void removeDuplicateWithID(const std::string& itemID);
    // Takes the fresher playlist's title and images, fetches its artwork, and drops the
    // entries of finished tracks that the playlist no longer lists.
    void updatePlaylist(const ItemPtr& playlist, const ItemPtr& from);
    void updateCommentsCountFor(const ItemPtr& item, std::int64_t count);

    // The rows of cachedItemsPredicate, newest download first.
    std::optional<Items> cachedItems();
    // The number of completed downloads among the ids; 0 when any id is empty.
    std::int64_t countDownloadedTracks(const std::vector<std::string>& itemIDs);
    bool isDownloaded(const std::string& itemID);
    bool isDownloadCompleted(const std::string& itemID);
    // The item's file is there and larger than 10240 bytes (smaller is an error page).
    bool isDownloadedFileOkFor(const Item& item);
    bool isAlbumFullyDownloaded(const ItemPtr& album);
    bool isPlaylistFullyDownloaded(const ItemPtr& playlist);
    // (The name's spelling is the operation's.)
    bool isDownloadCompletedIdependentlyFromTypeFor(const ItemPtr& item);
    bool isBeingDownloadedIndependentlyFromTypeFor(const ItemPtr& item);
    // Wanted (a row with `downloaded`), not complete, and nothing running for it.
    bool isDownloadFailedFor(const ItemPtr& item);

    void markAsDownloaded(const std::string& itemID);
    void markAsDownloadCompleted(const std::string& itemID);
    // `itemIDs` is the comma-joined list sent to the service. A list of more than one id
    // marks the whole offline set (the ids are not read); one id marks its row.
    void markItemsAsSynced(const std::string& itemIDs);

    // Preset 0: smallImage, 1: originalImage, any other: image. Nil for a missing value;
    // an empty one falls back to `image`.
    static std::optional<std::string> getImageUrlForPresetFrom(const Item& item, int preset);
    static bool playlistContainsTrackFor(const Item& playlist, const Item& track);

    // The offline lists' predicates, each built once.
    const Predicate& cachedItemsPredicate();
    const Predicate& unsyncedDownloadsPredicate();
    const Predicate& offlineIdsPredicate();
    const Predicate& offlineAllPredicate();
    const Predicate& offlineSongsPredicate();
    const Predicate& offlineAlbumsPredicate();
    const Predicate& offlinePlaylistsPredicate();
    const Predicate& allDownloadsCompletedPredicate();
    // The listener's offline count: every item downloaded in full. 0 without a store.
    std::int64_t offlineDownloadsCount();

    // The ids of the downloads the service has not been told of yet, and of everything on
    // the device; only `itemID` is read. Empty on failure.
    std::vector<std::string> unsyncedDownloadsIds();
    std::vector<std::string> offlineIds();

    // The offline playlists in the given order, each with its track count refreshed (not
    // saved).
    std::optional<Items> offlinePlaylists(category::OfflineSorting sorting);
    // Downloaded songs, albums and album tracks whose title or artist holds `query`,
    // without regard to case or diacritics.
    static Predicate offlineSearchPredicateFor(const std::string& query);
    // newest: downloadDate descending; oldest: ascending; alphabetical: artist ascending.
    static SortDescriptor sortDescriptorFor(category::OfflineSorting sorting);
    // The common fetch of every query.
    std::optional<Items> fetch(const Predicate& predicate,
                               const std::vector<SortDescriptor>& sortDescriptors = {},
                               const std::vector<std::string>& propertiesToFetch = {});

    // The debug export of the settings screen ("settings_debug_info"): writes "export.txt"
    // into the documents directory (one line per row of cachedItemsPredicate), and puts it
    // with a copy of the store file into the folder "debug-export" beside it, where the
    // listener picks them up to send them. Answers the two attachments, or nil after
    // logging "Send debug info error: " and the reason.
    struct Attachment {
        std::string fileName;  // "export.txt", "CoreData.sqlite"
        std::string mimeType;  // "text/plain", "application/x-sqlite3"
        std::string path;
    };
    std::optional<std::vector<Attachment>> sendDebugInfo();
    // The text of "export.txt".
    std::string debugExportText();

  private:
    bool exists(const Predicate& predicate);
    // "(itemID == %@) && (downloaded == 1)": the item is wanted on the device.
    bool hasDownloadRow(const std::string& itemID);
    ItemPtr firstRowWithID(const std::string& itemID);
    std::vector<std::string> fetchIds(const Predicate& predicate);

    TBCoreDataManager& saving_;
    ItemDownloadActivity* downloads_ = nullptr;
    const ItemPredicates predicates_;
};

}  // namespace tb
