#pragma once

#include <string>

namespace tb::service {

// Slugs of the catalogue: lower-case letters, digits and single hyphens, at most 65
// characters. Request paths are matched against the same alphabet.
class Slug {
  public:
    static std::string from(const std::string& text);
    static bool valid(const std::string& slug);
};

}  // namespace tb::service
