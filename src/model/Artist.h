#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "model/store/ManagedObject.h"
#include "model/store/StoreTypes.h"

namespace tb {

class JSON;
class TBCoreDataManager;
struct Artist;
using ArtistPtr = std::shared_ptr<Artist>;

// The one record for an account. A stored entity ("Artist").
struct Artist final : ManagedObject {
    std::optional<std::string> artistId;
    std::optional<std::string> name;
    std::optional<std::string> urlSlug;
    std::optional<std::string> url;
    std::optional<std::string> image;
    std::optional<std::string> banner;
    std::optional<std::string> bio;
    std::optional<std::string> hometown;
    std::optional<std::string> label;
    std::optional<std::string> genre;
    std::optional<std::string> facebook;
    std::optional<std::string> twitter;
    std::optional<std::string> instagram;
    std::optional<std::string> youtube;
    std::optional<Date> created;
    bool admin = false;
    bool canComment = false;
    bool followed = false;
    bool tastemaker = false;
    bool verified = false;
    std::int64_t favoritesCount = 0;
    std::int64_t feedCount = 0;
    std::int64_t followersCount = 0;
    std::int64_t followingCount = 0;
    std::int64_t pinnedCount = 0;
    std::int64_t playlistsCount = 0;
    std::int64_t playsCount = 0;
    std::int64_t reupsCount = 0;
    std::int64_t uploadsCount = 0;
    bool verifiedSearchResult = false;  // not stored

    static const EntityDescription& entityDescription();
    const EntityDescription& entity() const override { return entityDescription(); }

    // The store of the listener's own account. There is at most one saved artist: the
    // account as the last user record described it. All of these work on the context of
    // the store that `store` saves and answer nil (or do nothing) without one.

    // A new record inserted into the shared context; a row at the next save.
    static ArtistPtr newObject(TBCoreDataManager& store);
    // The saved artist, as last saved; nil when there is none.
    static ArtistPtr savedArtist(TBCoreDataManager& store);
    // Makes this record the saved artist and saves: every other Artist row goes, and a
    // record of no context (as the mapper makes them) is stored as a copy, which
    // savedArtist() then answers.
    void cacheObject(TBCoreDataManager& store);
    // Removes every Artist row and saves.
    static void removeAll(TBCoreDataManager& store);

    // The mapper. Never throws: anything but a dictionary gives nil.
    static ArtistPtr parseFrom(const JSON& json);
};

}  // namespace tb
