#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/ItemAttributes.h"
#include "model/ItemType.h"
#include "model/store/ManagedObject.h"

namespace tb {

class JSON;
class ObjectContext;

// The one record for everything that can be played or listed: a song, an album, a playlist,
// a track of an album, a track of a playlist. A stored entity ("Item"); records made by the
// mappers are detached: a row exists only where the app saves one.
struct Item final : ManagedObject, ItemAttributes {
    bool georestricted = false;         // stored; the bookmark mirror does not keep it
    bool verifiedSearchResult = false;  // not stored: search marks results of verified artists

    static const EntityDescription& entityDescription();
    const EntityDescription& entity() const override { return entityDescription(); }

    // Derived properties.
    ItemType itemType() const;
    // The public web page of the item on `webBase` (the service's web host), or nil.
    std::optional<std::string> shareURL(const std::string& webBase) const;
    std::string typeForHighlightingAPI() const;
    bool isTakenDown() const;
    // `userSlug` is the signed-in listener's slug from the keychain.
    bool isUploadedByMyself(bool loggedIn, const std::optional<std::string>& userSlug) const;
    // The offline file of this item: `documents`/<itemID>.mp3, with the id made safe as a
    // file name so that no id can leave the folder.
    std::string localFileURL(const std::string& documents) const;
    std::vector<ItemPtr> availableItems() const;
    std::vector<ItemPtr> availableTracks() const;

    // A full copy of `item`: a new record of "Item" made in `context`, the app's one context,
    // with every stored attribute copied by name, nil values included. Like every record made
    // while reading, it becomes a row only once it is changed (ObjectContext::makeObject).
    // Nil without a context, or without an item.
    static ItemPtr newFrom(ObjectContext* context, const ItemPtr& item);

    // The mappers. They never throw: malformed input gives nil. An album's tracks are made
    // in `shared`, the app's one context, when it is given (see ObjectContext::makeObject:
    // they become rows only when changed); without it every record is detached.
    static ItemPtr parseItemFrom(const JSON& json,
                                 bool ignoreGeoRestricted,
                                 ObjectContext* shared = nullptr);
    static ItemPtr parsePlaylistFrom(const JSON& json, ObjectContext* shared = nullptr);
};

}  // namespace tb
