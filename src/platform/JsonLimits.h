#pragma once

#include <string_view>

namespace tb {

// The deepest nesting of JSON text this app accepts. Real answers of the service are a few
// levels deep; a body nested thousands deep is hostile and would exhaust the stack of any
// recursive walk over it.
inline constexpr int kMaxJsonDepth = 256;

// True when the arrays and objects of `text` nest no deeper than `maxDepth`. Brackets inside
// strings don't count. Cheap: one pass, no allocation. Run it before parsing foreign JSON.
bool jsonNestingWithin(std::string_view text, int maxDepth = kMaxJsonDepth);

}  // namespace tb
