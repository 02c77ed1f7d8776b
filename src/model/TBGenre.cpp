#include "model/TBGenre.h"

#include "core/TBLocalization.h"

namespace tb {

namespace {

struct GenreNames {
    const char* value;
    const char* display;  // nullptr: localised
};

constexpr std::array<GenreNames, 20> kNames = {{
    {"all", nullptr},
    {"rnb", "R&B"},
    {"dancehall", "Reggae"},
    {"afrobeats", "Afrobeats"},
    {"instrumental", "Instrumentals"},
    {"rap", "Hip-Hop / Rap"},
    {"electronic", "Electronic"},
    {"latin", "Latin"},
    {"pop", "Pop"},
    {"podcast", "Podcast"},
    {"rock", "Rock"},
    {"afropop", "Afropop"},
    {"jazz", "Jazz"},
    {"country", "Country"},
    {"world", "World"},
    {"classical", "Classical"},
    {"gospel", "Gospel"},
    {"acapella", "Acapella"},
    {"dj-mix", "Dj-mix"},
    {"other", "Other"},
}};

const GenreNames& namesOf(TBGenre genre) {
    return kNames[static_cast<size_t>(caseIndex(genre))];
}

}  // namespace

std::string rawValue(TBGenre genre) {
    return namesOf(genre).value;
}

std::optional<TBGenre> genreFromRawValue(std::string_view value) {
    for (const TBGenre genre : kAllGenres) {
        if (value == namesOf(genre).value) {
            return genre;
        }
    }
    return std::nullopt;
}

std::optional<TBGenre> genreFromCaseIndex(int index) {
    if (index < 0 || index >= static_cast<int>(kAllGenres.size())) {
        return std::nullopt;
    }
    return kAllGenres[static_cast<size_t>(index)];
}

std::string displayText(TBGenre genre) {
    const char* fixed = namesOf(genre).display;
    return fixed != nullptr ? fixed : TBLocalization::localizedString("browse_filter_allgenres");
}

std::string defaultGenreValue(TBGenre genre) {
    switch (genre) {
        case TBGenre::afrobeats:
            return "afropop";
        case TBGenre::dancehall:
            return "dancehall";
        default:
            return rawValue(genre);
    }
}

}  // namespace tb
