#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tb {

// The stored form of an integer array attribute: a JSON array of integers, "[3,0,17]".
class IntegerArrayText {
  public:
    static std::string encode(const std::vector<std::int64_t>& values);
    // Nil for anything but an array of integers.
    static std::optional<std::vector<std::int64_t>> decode(std::string_view text);
};

}  // namespace tb
