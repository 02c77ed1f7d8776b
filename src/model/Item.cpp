#include "model/Item.h"

#include <algorithm>

#include "model/store/EntityDescription.h"
#include "model/store/ObjectContext.h"
#include "platform/SafeFileName.h"

namespace tb {

namespace {

std::vector<ItemPtr> withoutGeoRestricted(const std::vector<ItemPtr>& entries) {
    std::vector<ItemPtr> available;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(available),
                 [](const ItemPtr& entry) { return entry && !entry->georestricted; });
    return available;
}

}  // namespace

ItemType Item::itemType() const {
    // The order matters: an album track that is also marked a song counts as a song.
    if (isSong) {
        return ItemType::song;
    }
    if (isAlbum) {
        return ItemType::album;
    }
    if (isPlaylist) {
        return ItemType::playlist;
    }
    if (isAlbumTrack) {
        return ItemType::albumTrack;
    }
    if (isPlaylistTrack) {
        return ItemType::playlistTrack;
    }
    if (isUserPlaylist) {
        return ItemType::userPlaylist;
    }
    return ItemType::unknown;
}

std::optional<std::string> Item::shareURL(const std::string& webBase) const {
    if (!uploaderSlug || !urlSlug) {
        return std::nullopt;
    }
    const char* kind = nullptr;
    switch (itemType()) {
        case ItemType::song:
        case ItemType::albumTrack:
        case ItemType::playlistTrack:
            kind = "/song/";
            break;
        case ItemType::album:
            kind = "/album/";
            break;
        case ItemType::playlist:
            kind = "/playlist/";
            break;
        default:
            return std::nullopt;
    }
    std::string base = webBase;
    while (!base.empty() && base.back() == '/') {
        base.pop_back();
    }
    return base + kind + *uploaderSlug + "/" + *urlSlug;
}

std::string Item::typeForHighlightingAPI() const {
    const ItemType kind = itemType();
    if (kind == ItemType::albumTrack || kind == ItemType::playlistTrack) {
        return "song";
    }
    return type.value_or("");
}

bool Item::isTakenDown() const {
    return status == "suspended" || status == "takedown" || status == "unplayable";
}

bool Item::isUploadedByMyself(bool loggedIn, const std::optional<std::string>& userSlug) const {
    // A test of playlists only: a song never counts as the listener's here. (The rule's
    // fallback for user playlists can't apply once the item is known to be a playlist.)
    if (itemType() != ItemType::playlist || !loggedIn) {
        return false;
    }
    return userSlug == uploaderSlug;  // both nil counts as equal
}

std::string Item::localFileURL(const std::string& documents) const {
    return documents + "/" + safeFileName(itemID.value_or("")) + ".mp3";
}

std::vector<ItemPtr> Item::availableItems() const {
    return withoutGeoRestricted(items);
}

std::vector<ItemPtr> Item::availableTracks() const {
    return withoutGeoRestricted(tracks);
}

ItemPtr Item::newFrom(ObjectContext* context, const ItemPtr& item) {
    if (!context || !item) {
        return nullptr;
    }
    auto copy = context->makeObject<Item>();
    EntityDescription::copyAttributes(*item, *copy);
    return copy;
}

}  // namespace tb
