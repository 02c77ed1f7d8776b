#include "model/TBFeaturedSpot.h"

#include <algorithm>
#include <cctype>
#include <functional>

#include "core/TBLocalization.h"
#include "model/Item.h"
#include "platform/JSON.h"
#include "platform/StringUtil.h"

namespace tb {

namespace {

std::optional<std::string> itemIdOf(const ItemPtr& item) {
    return item ? item->itemID : std::nullopt;
}

std::optional<std::string> artistIdOf(const ArtistPtr& artist) {
    return artist ? artist->artistId : std::nullopt;
}

std::size_t hashOf(const std::optional<std::string>& text) {
    return text ? std::hash<std::string>{}(*text) : 0x9e3779b9u;
}

}  // namespace

TBFeaturedSpot TBFeaturedSpot::fromJSON(const JSON& json, ObjectContext* shared) {
    TBFeaturedSpot spot;
    spot.type = json["type"].string();
    const JSON ref = json["ref"];
    const JSON refType = ref["type"];
    if (!refType.exists() || refType.stringValue() == "artist") {
        spot.artist = Artist::parseFrom(ref);
    } else if (refType.stringValue() == "playlist") {
        spot.item = Item::parsePlaylistFrom(ref, shared);
    } else {
        spot.item = Item::parseItemFrom(ref, true, shared);
    }
    return spot;
}

std::string TBFeaturedSpot::prettyType() const {
    if (artist) {
        return TBLocalization::localizedString("artist");
    }
    if (item && item->itemType() == ItemType::playlist) {
        return type.value_or("");
    }
    const bool isAlbum = item && item->itemType() == ItemType::album;
    const std::string kind = TBLocalization::localizedString(isAlbum ? "album" : "song");
    return uppercased(type.value_or("") + " " + kind);
}

bool TBFeaturedSpot::isEqual(const TBFeaturedSpot& other) const {
    return type == other.type && itemIdOf(item) == itemIdOf(other.item) &&
           artistIdOf(artist) == artistIdOf(other.artist);
}

std::size_t TBFeaturedSpot::hash() const {
    std::size_t seed = hashOf(type);
    for (const std::size_t part : {hashOf(itemIdOf(item)), hashOf(artistIdOf(artist))}) {
        seed ^= part + 0x9e3779b9u + (seed << 6) + (seed >> 2);
    }
    return seed;
}

}  // namespace tb
