#pragma once

namespace tb {

// User-info keys of the app's notifications.
struct TBGlobalNotificationsKeys {
    const char* itemId = "itemId";
    const char* albumId = "albumId";
    const char* playlistId = "playlistId";
    const char* playlist = "playlist";
    const char* item = "item";
};

}  // namespace tb
