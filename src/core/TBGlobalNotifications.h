#pragma once

namespace tb {

// Names of the app's notifications; each field holds its own name.
struct TBGlobalNotifications {
    const char* loggedIn = "loggedIn";
    const char* loggedOut = "loggedOut";
    const char* canceledLogin = "canceledLogin";
    const char* commentsCountUpdated = "commentsCountUpdated";
    const char* download = "download";
    const char* downloadRemoved = "downloadRemoved";
    const char* shuffleStatusChanged = "shuffleStatusChanged";
    const char* didEnterBackground = "didEnterBackground";
    const char* willEnterForeground = "willEnterForeground";
    const char* housekeepingCompleted = "housekeepingCompleted";
    const char* musicCellTypeChanged = "musicCellTypeChanged";
    const char* editedPlaylist = "editedPlaylist";
    const char* deletedPlaylist = "deletedPlaylist";
    const char* featuredPostsPulled = "featuredPostsPulled";
    const char* songChanged = "songChanged";
    const char* canCastSongToChromecast = "canCastSongToChromecast";
    const char* playPauseChanged = "playPauseChanged";
    const char* needCastPositionAndStatusUpdate = "needCastPositionAndStatusUpdate";
    const char* highlightsChanged = "highlightsChanged";
    const char* searchFiltersChanged = "searchFiltersChanged";
    const char* networkBecameReachable = "networkBecameReachable";
    const char* networkBecameUnreachable = "networkBecameUnreachable";
    const char* favoriteToggled = "favoriteToggled";
    const char* playerClosed = "playerClosed";
    const char* eqEnablingChanged = "eqEnablingChanged";
    const char* eqValuesChanged = "eqValuesChanged";
    const char* chromecastSessionChanged = "chromecastSessionChanged";
};

}  // namespace tb
