#pragma once

#include <cstdint>

namespace tb::service {

struct ArtistCounts {
    int64_t followers = 0;
    int64_t following = 0;
    int64_t favorites = 0;
    int64_t playlists = 0;
    int64_t uploads = 0;
    int64_t reposts = 0;
    int64_t plays = 0;
};

}  // namespace tb::service
