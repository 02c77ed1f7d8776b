#pragma once

#include <string>
#include <string_view>

namespace tb {

// Well-formed UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF. Text that
// goes into JSON files or D-Bus strings must pass this.
bool isValidUtf8(std::string_view text);

// The text with every ill-formed sequence replaced by U+FFFD, one replacement per maximal
// subpart (a lead byte and the continuation bytes that could still have completed it), so
// that one broken character never swallows the valid one after it. Valid text comes back
// unchanged.
std::string repairedUtf8(std::string_view text);

}  // namespace tb
