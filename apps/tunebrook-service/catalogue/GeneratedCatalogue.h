#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tb::service {

// What the generators have made so far, for the later steps to refer to.
struct GeneratedCatalogue {
    struct Artist {
        int64_t id = 0;
        std::string name;
        std::string genre;
        std::string verified;
    };
    struct Music {
        int64_t id = 0;
        int64_t uploaderId = 0;
        std::string type;
        int64_t albumId = 0;
        bool active = true;
        bool geoRestricted = false;
    };
    struct Playlist {
        int64_t id = 0;
        int64_t ownerId = 0;
        bool isPrivate = false;
    };

    std::vector<Artist> artists;
    std::vector<Music> music;
    std::vector<Playlist> playlists;
};

}  // namespace tb::service
