#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tb {

// Standard base64 (RFC 4648 alphabet, with padding), for bytes kept inside text files.
std::string base64Encode(std::string_view bytes);

// Decodes padded standard base64. Anything else (a stray character, a wrong length, bits
// left over after the last byte) gives nothing rather than a guess.
std::optional<std::string> base64Decode(std::string_view text);

}  // namespace tb
