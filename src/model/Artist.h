#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "model/store/ManagedObject.h"
#include "model/store/StoreTypes.h"

namespace tb {

class JSON;
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

    // The mapper. Never throws: malformed input gives nil.
    static ArtistPtr parseFrom(const JSON& json);
};

}  // namespace tb
