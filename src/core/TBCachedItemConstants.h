#pragma once

namespace tb {

// The playback cache keeps this many songs.
struct TBCachedItemConstants {
    int maxCacheCount = 5;
};

}  // namespace tb
