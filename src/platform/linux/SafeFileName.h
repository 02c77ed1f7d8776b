#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tb {

// A file name stem for an outside name (a defaults suite, a keychain identity) that can
// never leave its folder nor meet another name's file:
//   - names of letters, digits, '.', '_' and '-' (not starting with '.', not too long, not
//     one of `reserved`) are used as they are;
//   - any other name becomes "%" followed by its bytes, each one not in that set written as
//     %XX, so no slash, "..", control character or empty name survives;
//   - an encoded name that would be too long for a file system becomes "%sha256-" and the
//     hex digest of the name.
// Plain stems never contain '%' and encoded ones always start with it, so two different
// names never share a stem.
std::string safeFileStem(std::string_view name, const std::vector<std::string>& reserved = {});

}  // namespace tb
