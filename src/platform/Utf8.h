#pragma once

#include <string_view>

namespace tb {

// Well-formed UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF. Text that
// goes into JSON files or D-Bus strings must pass this.
bool isValidUtf8(std::string_view text);

}  // namespace tb
