#pragma once

namespace tb {

// The kind of an Item, in the order the tests run (see Item::itemType()).
enum class ItemType {
    song = 0,
    album = 1,
    playlist = 2,
    albumTrack = 3,
    playlistTrack = 4,
    userPlaylist = 5,
    unknown = 6,
};

}  // namespace tb
