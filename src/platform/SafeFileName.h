#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tb {

// The file name (or name stem) that stands for a service id or any other outside name inside
// a folder of ours. It can never leave its folder, and two different names never share it:
//   - a plain name (letters, digits, '.', '_' and '-', not starting with '.', at most 160
//     bytes, not one of `reserved`) is used as it is: "12345" stays "12345";
//   - any other name is percent-encoded: every byte outside that set becomes %XX, and so does
//     the first byte of a name that starts with '.' or is reserved ("..": "%2E.",
//     "a/b": "a%2Fb"). The result decodes back to the name, so it meets no plain name and no
//     other encoded one;
//   - the empty name is "%";
//   - a name whose encoding would be too long for a file system becomes "%sha256-" and the
//     hex digest of the name.
std::string safeFileName(std::string_view name, const std::vector<std::string>& reserved = {});

}  // namespace tb
