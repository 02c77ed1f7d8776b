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
    // Null when an escape is malformed. "+" stays a plus sign: this service's callers never
    // write spaces that way, and the signatures are computed over the decoded text.
    static std::optional<std::string> decode(std::string_view text);
};

}  // namespace tb::service
