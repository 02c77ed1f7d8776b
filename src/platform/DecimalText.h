#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tb {

// The leading decimal number of a text, read the way a decimal box reads a string: blanks
// first, an optional sign, digits with an optional fraction, an optional exponent. Whatever
// follows is ignored; a text without a digit in front is no number.
struct DecimalPrefix {
    bool negative = false;
    std::string_view integerDigits;
    std::string_view fractionDigits;
    std::string_view mantissa;  // the digits and point, without the sign
    int exponent = 0;
    bool hasExponent = false;
};

std::optional<DecimalPrefix> scanDecimal(std::string_view text);

// The nearest double; too large gives infinity and too small zero, as strtod would.
double decimalToDouble(const DecimalPrefix& decimal);

// Integer part of a decimal text, exact for every int64, saturated beyond.
std::int64_t decimalToInt64(const DecimalPrefix& decimal);

// Truncates toward zero and saturates at the ends of int64; NaN is 0.
std::int64_t saturatingInt64(double value);
std::int64_t saturatingInt64(std::uint64_t value);

}  // namespace tb
