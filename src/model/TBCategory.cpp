#include "model/TBCategory.h"

#include <array>

#include "core/TBLocalization.h"

namespace tb {

namespace {

constexpr std::array<const char*, 4> kCategoryValues = {"all", "song", "album", "playlist"};
constexpr std::array<const char*, 3> kSortingKeys = {"offline_sort_newest", "offline_sort_oldest",
                                                     "offline_sort_alphabetically"};
constexpr std::array<const char*, 3> kPlaylistKeys = {
    "playlists_filter_my", "playlists_filter_favorited", "playlists_filter_offline"};

}  // namespace

std::string rawValue(TBCategory category) {
    return kCategoryValues[static_cast<size_t>(category)];
}

std::optional<TBCategory> categoryFromRawValue(std::string_view value) {
    for (size_t i = 0; i < kCategoryValues.size(); ++i) {
        if (value == kCategoryValues[i]) {
            return static_cast<TBCategory>(i);
        }
    }
    return std::nullopt;
}

std::string displayKey(category::OfflineSorting sorting) {
    return kSortingKeys[static_cast<size_t>(sorting)];
}

std::string displayKey(category::Playlist filter) {
    return kPlaylistKeys[static_cast<size_t>(filter)];
}

std::string displayText(category::OfflineSorting sorting) {
    return TBLocalization::localizedString(displayKey(sorting));
}

std::string displayText(category::Playlist filter) {
    return TBLocalization::localizedString(displayKey(filter));
}

}  // namespace tb
