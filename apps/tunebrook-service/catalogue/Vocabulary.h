#pragma once

#include <string>
#include <vector>

namespace tb::service {

// The fixed words of the catalogue's paths and filters.
class Vocabulary {
  public:
    // Every genre value but "all", in the client's order.
    static const std::vector<std::string>& genres();
    static const std::vector<std::string>& periods();
    // Playlist categories, "Trending" first.
    static const std::vector<std::string>& tags();
    static bool isGenre(const std::string& value);
    static bool isPeriod(const std::string& value);
};

}  // namespace tb::service
