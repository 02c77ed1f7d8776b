#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tb::service {

// Percent-encoding of UTF-8 text with upper-case hex, and its strict inverse.
class PercentCodec {
  public:
    // Leaves ASCII letters, digits and the characters of `keep` as they are.
    static std::string encode(std::string_view text, std::string_view keep);
    // Letters, digits and "-._~" stay; everything else is escaped.
    static std::string encodeUnreserved(std::string_view text);
    // Null when an escape is malformed. "+" stays a plus sign, as it does in a URL path.
    static std::optional<std::string> decode(std::string_view text);
    // The same for a name or value of a form body or query string, where "+" is a space:
    // standard clients write spaces that way and sign the decoded text.
    static std::optional<std::string> decodeFormComponent(std::string_view text);
};

}  // namespace tb::service
