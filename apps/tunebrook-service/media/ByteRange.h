#pragma once

#include <cstdint>
#include <string>

namespace tb::service {

// The one byte range of a "Range: bytes=..." header against a resource of `size` bytes.
// Several ranges, another unit or a malformed header mean the whole resource, as the
// protocol allows; a range that starts beyond the end can't be satisfied.
struct ByteRange {
    enum class Kind { whole, partial, unsatisfiable };
    Kind kind = Kind::whole;
    uint64_t first = 0;
    uint64_t last = 0;  // inclusive

    uint64_t length() const { return last - first + 1; }
    static ByteRange parse(const std::string& header, uint64_t size);
};

}  // namespace tb::service
