#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tb::service {

// An account: an uploading artist of the catalogue or a listener who signed up.
struct AccountRow {
    int64_t id = 0;
    std::string slug;
    std::string name;
    std::string verified;  // "yes", "tastemaker" or ""
    std::string genre;
    std::string bio;
    std::string hometown;
    std::string label;
    std::string website;
    std::string twitter;
    std::string facebook;
    std::string instagram;
    std::string youtube;
    std::string image;   // media name, "" for none
    std::string banner;  // media name, "" for none
    double created = 0;
    bool uploader = false;
    std::optional<std::string> email;
    int64_t baseFollowers = 0;  // followers from outside this demo
    double feedSeen = 0;
};

}  // namespace tb::service
