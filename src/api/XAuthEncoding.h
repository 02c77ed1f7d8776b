#pragma once

#include <string>
#include <string_view>

#include "platform/PercentEncoding.h"

namespace tb {

// HMAC-SHA1 of `text` under `key`, as standard Base64 with "=" padding.
std::string hmacSha1Base64(std::string_view key, std::string_view text);

// The catalogue client's old name for the signers' encoding; it goes once that client calls
// percentEncodePathSegment for its segments.
inline std::string strictEscape(std::string_view text) {
    return percentEncodeForSigning(text);
}

}  // namespace tb
