#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "model/ItemAttributes.h"
#include "model/TBCategory.h"
#include "model/store/Predicate.h"
#include "model/store/SortDescriptor.h"
#include "platform/Error.h"

namespace tb {

// Every query over the stored `Item` rows: what is downloaded, what is complete, what the
// offline lists show. No other code writes predicates over Item.
//
// All operations are class-level and work on the one context of the current AppContext
// (TBDataManager). Without a context they answer nil, 0, false or empty and write nothing;
// a fetch that fails is an empty answer. "id" arguments are service ids; an empty id is
// the same as none.
class ItemDAO {
  public:
    using Items = std::vector<ItemPtr>;

    // A record of the entity that belongs to no context (a value); nil without a context.
    static ItemPtr newItem();
    // Stores a detached (or foreign) item as a new row and answers the row; the argument
    // itself without a context. An album's tracks get rows too (an existing track row is
    // taken over by the album's download); a playlist's items always get new rows, which
    // may double up: removeDuplicateWithID cleans them.
    static ItemPtr saveItem(const ItemPtr& item);
    static ItemPtr findByID(const std::string& itemID);
    // Keeps the first row of the id; the others go, with their downloads.
    static void removeDuplicateWithID(const std::string& itemID);
    // Takes the fresher playlist's title and images, fetches its artwork, and drops the
    // entries of finished tracks that the playlist no longer lists.
    static void updatePlaylist(const ItemPtr& playlist, const ItemPtr& from);
    static void updateCommentsCountFor(const ItemPtr& item, std::int64_t count);

    // The rows of cachedItemsPredicate, newest download first.
    static std::optional<Items> cachedItems();
    // The number of completed downloads among the ids; 0 when any id is empty.
    static std::int64_t countDownloadedTracks(const std::vector<std::string>& itemIDs);
    static bool isDownloaded(const std::string& itemID);
    static bool isDownloadCompleted(const std::string& itemID);
    // The item's file is there and larger than 10240 bytes (smaller is an error page).
    static bool isDownloadedFileOkFor(const Item& item);
    static bool isAlbumFullyDownloaded(const ItemPtr& album);
    static bool isPlaylistFullyDownloaded(const ItemPtr& playlist);
    // (The name's spelling is the operation's.)
    static bool isDownloadCompletedIdependentlyFromTypeFor(const ItemPtr& item);
    static bool isBeingDownloadedIndependentlyFromTypeFor(const ItemPtr& item);
    // Wanted (a row with `downloaded`), not complete, and nothing running for it.
    static bool isDownloadFailedFor(const ItemPtr& item);

    static void markAsDownloaded(const std::string& itemID);
    static void markAsDownloadCompleted(const std::string& itemID);
    // `itemIDs` is the comma-joined list sent to the service. A list of more than one id
    // marks the whole offline set (the ids are not read); one id marks its row.
    static void markItemsAsSynced(const std::string& itemIDs);

    // Preset 0: smallImage, 1: originalImage, any other: image. Nil for a missing value;
    // an empty one falls back to `image`.
    static std::optional<std::string> getImageUrlForPresetFrom(const Item& item, int preset);
    static bool playlistContainsTrackFor(const Item& playlist, const Item& track);

    // Asks the service for the item's web address (its page), as sharing an offline item
    // needs. Success with the service's record, or with the item itself for an album; a
    // failure with the request's error, or with none when the item was not in the answer.
    using RefreshSuccess = std::function<void(const ItemPtr& result)>;
    using RefreshFailure = std::function<void(const std::optional<Error>& error)>;
    static void refreshInfoFor(const ItemPtr& item, RefreshSuccess success, RefreshFailure failure);

    // The offline lists' predicates, each built once per context.
    static const Predicate& cachedItemsPredicate();
    static const Predicate& unsyncedDownloadsPredicate();
    static const Predicate& offlineIdsPredicate();
    static const Predicate& offlineAllPredicate();
    static const Predicate& offlineSongsPredicate();
    static const Predicate& offlineAlbumsPredicate();
    static const Predicate& offlinePlaylistsPredicate();
    static const Predicate& allDownloadsCompletedPredicate();

    // The ids of the downloads the service has not been told of yet, and of everything on
    // the device; only `itemID` is read. Empty on failure.
    static std::vector<std::string> unsyncedDownloadsIds();
    static std::vector<std::string> offlineIds();

    // The offline playlists in the given order, each with its track count refreshed (not
    // saved).
    static std::optional<Items> offlinePlaylists(category::OfflineSorting sorting);
    // Downloaded songs, albums and album tracks whose title or artist holds `query`,
    // without regard to case or diacritics.
    static Predicate offlineSearchPredicateFor(const std::string& query);
    // newest: downloadDate descending; oldest: ascending; alphabetical: artist ascending.
    static SortDescriptor sortDescriptorFor(category::OfflineSorting sorting);
    // The common fetch of every query.
    static std::optional<Items> fetch(const Predicate& predicate,
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
    static std::optional<std::vector<Attachment>> sendDebugInfo();
    // The text of "export.txt".
    static std::string debugExportText();
};

}  // namespace tb
