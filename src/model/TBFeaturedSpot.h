#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "model/Artist.h"
#include "model/ItemAttributes.h"

namespace tb {

class JSON;
class ObjectContext;

// One promoted entry of the "featured" answer: music (`item`) or an account (`artist`).
struct TBFeaturedSpot {
    std::optional<std::string> type;  // the promotion's label, as the service writes it
    ItemPtr item;
    ArtistPtr artist;

    // Reads "type" and the entry at "ref": an artist when "ref" "type" is "artist" or absent,
    // a playlist when it is "playlist", otherwise a song or album, dropped when restricted in
    // the listener's country. A spot with neither item nor artist is for the caller to drop.
    // Album tracks are made in `shared` when given.
    static TBFeaturedSpot fromJSON(const JSON& json, ObjectContext* shared = nullptr);

    // The label shown over the spot: the localised "artist" word for an account; the spot's
    // `type` for a playlist; otherwise "<type> <album or song>", upper-cased.
    std::string prettyType() const;

    // Same label and the same music and account (by id).
    bool isEqual(const TBFeaturedSpot& other) const;
    bool operator==(const TBFeaturedSpot& other) const { return isEqual(other); }
    // Agrees with isEqual.
    std::size_t hash() const;
};

}  // namespace tb

template <>
struct std::hash<tb::TBFeaturedSpot> {
    std::size_t operator()(const tb::TBFeaturedSpot& spot) const { return spot.hash(); }
};
