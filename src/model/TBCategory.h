#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tb {

// The kinds of music a list can be filtered to.
enum class TBCategory { all, song, album, playlist };

// "all", "song", "album", "playlist".
std::string rawValue(TBCategory category);
std::optional<TBCategory> categoryFromRawValue(std::string_view value);

// The sub-enums of the filter screens.
namespace category {

// The order of the offline list.
enum class OfflineSorting { newest, oldest, alphabetical };
// Which playlists the playlists tab shows.
enum class Playlist { mine, favorited, offline };

}  // namespace category

// "offline_sort_newest", "offline_sort_oldest", "offline_sort_alphabetically".
std::string displayKey(category::OfflineSorting sorting);
// "playlists_filter_my", "playlists_filter_favorited", "playlists_filter_offline".
std::string displayKey(category::Playlist filter);
std::string displayText(category::OfflineSorting sorting);
std::string displayText(category::Playlist filter);

// The localisation keys of the other filter labels.
namespace filterLabelKeys {
inline constexpr const char* kOfflineAllMusic = "offline_filter_allmusic";
inline constexpr const char* kOfflineSongs = "offline_filter_songs";
inline constexpr const char* kOfflineAlbums = "offline_filter_albums";
inline constexpr const char* kOfflinePlaylists = "offline_filter_playlists";
inline constexpr const char* kOfflineNotOnDevice = "offline_filter_notondevice";
inline constexpr const char* kFavoritesAllMusic = "favorites_filter_allmusic";
inline constexpr const char* kFavoritesSongs = "favorites_filter_songs";
inline constexpr const char* kFavoritesAlbums = "favorites_filter_albums";
inline constexpr const char* kFavoritesPlaylists = "favorites_filter_playlists";
}  // namespace filterLabelKeys

}  // namespace tb
