#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tb::service {

// Reads an "OAuth k="v", k2="v2"" header into decoded pairs. Null when the text isn't of
// that form, a key repeats, or it holds more entries than any client sends.
class AuthorizationHeader {
  public:
    static std::optional<std::map<std::string, std::string>> parse(std::string_view header);
};

}  // namespace tb::service
