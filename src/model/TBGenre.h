#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tb {

// The genres of the service, in the order the filters list them (the case index).
enum class TBGenre {
    all = 0,
    rnb = 1,
    dancehall = 2,
    afrobeats = 3,
    instrumental = 4,
    rap = 5,
    electronic = 6,
    latin = 7,
    pop = 8,
    podcast = 9,
    rock = 10,
    afropop = 11,
    jazz = 12,
    country = 13,
    world = 14,
    classical = 15,
    gospel = 16,
    acapella = 17,
    djMix = 18,
    other = 19,
};

inline constexpr std::array<TBGenre, 20> kAllGenres = {
    TBGenre::all,          TBGenre::rnb,      TBGenre::dancehall,  TBGenre::afrobeats,
    TBGenre::instrumental, TBGenre::rap,      TBGenre::electronic, TBGenre::latin,
    TBGenre::pop,          TBGenre::podcast,  TBGenre::rock,       TBGenre::afropop,
    TBGenre::jazz,         TBGenre::country,  TBGenre::world,      TBGenre::classical,
    TBGenre::gospel,       TBGenre::acapella, TBGenre::djMix,      TBGenre::other,
};

// The value the service knows the genre by ("all", "rnb", ..., "dj-mix", "other").
std::string rawValue(TBGenre genre);
// The genre of a service value; nil for a value the app doesn't know.
std::optional<TBGenre> genreFromRawValue(std::string_view value);
// The genre at a case index; nil outside 0...19.
std::optional<TBGenre> genreFromCaseIndex(int index);
inline int caseIndex(TBGenre genre) {
    return static_cast<int>(genre);
}

// The text the filters show: fixed names, except "all", which is localised.
std::string displayText(TBGenre genre);

// The value kept as the listener's default genre. Afrobeats is deliberately kept as
// "afropop"; every other genre, Reggae ("dancehall") included, keeps its own value.
std::string defaultGenreValue(TBGenre genre);

}  // namespace tb
