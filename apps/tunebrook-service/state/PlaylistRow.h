#pragma once

#include <cstdint>
#include <string>

#include "tunebrook-service/state/AccountRow.h"

namespace tb::service {

struct PlaylistRow {
    int64_t id = 0;
    std::string slug;
    std::string title;
    std::string genre;
    std::string description;
    bool isPrivate = false;
    double created = 0;
    double updated = 0;
    std::string image;
    std::string banner;
    int64_t plays = 0;
    int64_t favorites = 0;
    int64_t trackCount = 0;
    AccountRow owner;
};

}  // namespace tb::service
