#pragma once

#include <string>
#include <string_view>

#include "platform/PercentEncoding.h"

namespace tb {

// HMAC-SHA1 of `text` under `key`, as standard Base64 with "=" padding.
std::string hmacSha1Base64(std::string_view key, std::string_view text);

}  // namespace tb
