#pragma once

#include <cstdint>
#include <string>

#include "tunebrook-service/state/AccountRow.h"

namespace tb::service {

// A song or an album. Album tracks are songs with `albumId` set.
struct MusicRow {
    int64_t id = 0;
    std::string type;  // "song" or "album"
    std::string slug;
    std::string title;
    std::string artist;
    std::string featuring;
    std::string producer;
    std::string genre;
    std::string description;
    double released = 0;
    int64_t duration = 0;
    std::string status;  // "active", "suspended", "takedown" or "unplayable"
    bool geoRestricted = false;
    bool streamOnly = false;
    bool videoAd = false;
    int64_t albumId = 0;
    int64_t trackNumber = 0;
    std::string audio;  // media name of the sound, songs only
    std::string image;  // media name of the artwork
    int64_t playsDaily = 0;
    int64_t playsWeekly = 0;
    int64_t playsMonthly = 0;
    int64_t playsYearly = 0;
    int64_t playsTotal = 0;
    int64_t favorites = 0;
    int64_t reposts = 0;
    int64_t playlisted = 0;
    std::string buyLink;
    AccountRow uploader;

    // Set when the row comes from a feed as somebody's repost.
    std::string repostedBy;
    double repostedAt = 0;

    bool takenDown() const {
        return status == "suspended" || status == "takedown" || status == "unplayable";
    }
};

}  // namespace tb::service
