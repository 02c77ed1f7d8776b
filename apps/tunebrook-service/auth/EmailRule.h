#pragma once

#include <string>

namespace tb::service {

// The service's notion of an acceptable address: one "@", text on both sides, a dot in the
// domain, no spaces, at most 254 characters. Compared in lower case.
class EmailRule {
  public:
    static bool valid(const std::string& email);
    static std::string normalized(const std::string& email);
};

}  // namespace tb::service
