#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tb {

// The deepest nesting of JSON text this app accepts. Real answers of the service are a few
// levels deep; a body nested thousands deep is hostile and would exhaust the stack of any
// recursive walk over it.
inline constexpr int kMaxJsonDepth = 256;

// True when the arrays and objects of `text` nest no deeper than `maxDepth`. Brackets inside
// strings don't count. Cheap: one pass, no allocation. Run it before parsing foreign JSON.
bool jsonNestingWithin(std::string_view text, int maxDepth = kMaxJsonDepth);

// The text with every number too large for a double written as the largest double of its
// sign, or nothing when no number overflows. The parser refuses a document with such a number
// outright; the app would rather read it as "very large" and keep the rest of the answer.
std::optional<std::string> withOverflowingNumbersClamped(std::string_view text);

}  // namespace tb
