#pragma once

namespace tb {

// What a notification tells. Values 0 to 8, exactly.
enum class TBNotificationVerb : int {
    unknown = 0,
    favorite = 1,
    follow = 2,
    reup = 3,
    playlisted = 4,
    playlistFavorite = 5,
    playlistUpdated = 6,
    comment = 7,
    reply = 8,  // a "comment" whose "extra_context" holds a "parent"
};

}  // namespace tb
