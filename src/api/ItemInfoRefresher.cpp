#include "api/ItemInfoRefresher.h"

#include <nlohmann/json.hpp>

#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "model/Item.h"

namespace tb {

void ItemInfoRefresher::refreshInfoFor(const ItemPtr& item,
                                       RefreshSuccess success,
                                       RefreshFailure failure) {
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
    auto& data = data_;
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

}  // namespace tb
