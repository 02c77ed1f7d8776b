#pragma once

namespace tb {

// The types of the home-screen quick actions.
struct TBShortcutItemTypes {
    const char* downloads = "downloads";
    const char* topSongs = "topSongs";
    const char* favorites = "favorites";
    const char* playlists = "playlists";
};

}  // namespace tb
