#include "platform/DecimalText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace tb {

namespace {

constexpr double kInt64Limit = 9223372036854775808.0;  // 2^63

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// The order of magnitude of the mantissa: the decimal exponent of its first significant digit.
long leadingMagnitude(const DecimalPrefix& decimal) {
    const size_t firstNonZero = decimal.integerDigits.find_first_not_of('0');
    if (firstNonZero != std::string_view::npos) {
        return static_cast<long>(decimal.integerDigits.size() - firstNonZero) - 1;
    }
    const size_t fractionNonZero = decimal.fractionDigits.find_first_not_of('0');
    if (fractionNonZero == std::string_view::npos) {
        return std::numeric_limits<long>::min();  // the mantissa is zero
    }
    return -static_cast<long>(fractionNonZero) - 1;
}

}  // namespace

std::int64_t saturatingInt64(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= kInt64Limit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (value <= -kInt64Limit) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return static_cast<std::int64_t>(value);
}

std::int64_t saturatingInt64(std::uint64_t value) {
    constexpr auto max = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return value > max ? std::numeric_limits<std::int64_t>::max()
                       : static_cast<std::int64_t>(value);
}

std::optional<DecimalPrefix> scanDecimal(std::string_view text) {
    size_t i = 0;
    while (i < text.size() &&
           (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r')) {
        ++i;
    }
    DecimalPrefix result;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        result.negative = text[i] == '-';
        ++i;
    }
    const size_t mantissaStart = i;
    const size_t integerStart = i;
    while (i < text.size() && isDigit(text[i])) {
        ++i;
    }
    result.integerDigits = text.substr(integerStart, i - integerStart);
    if (i < text.size() && text[i] == '.') {
        const size_t fractionStart = ++i;
        while (i < text.size() && isDigit(text[i])) {
            ++i;
        }
        result.fractionDigits = text.substr(fractionStart, i - fractionStart);
    }
    if (result.integerDigits.empty() && result.fractionDigits.empty()) {
        return std::nullopt;
    }
    result.mantissa = text.substr(mantissaStart, i - mantissaStart);
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        size_t j = i + 1;
        bool negativeExponent = false;
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            negativeExponent = text[j] == '-';
            ++j;
        }
        if (j < text.size() && isDigit(text[j])) {
            long exponent = 0;
            while (j < text.size() && isDigit(text[j])) {
                exponent = std::min(exponent * 10 + (text[j] - '0'), 100000L);
                ++j;
            }
            result.exponent = static_cast<int>(negativeExponent ? -exponent : exponent);
            result.hasExponent = true;
        }
    }
    return result;
}

double decimalToDouble(const DecimalPrefix& decimal) {
    const long magnitude = leadingMagnitude(decimal);
    if (magnitude == std::numeric_limits<long>::min()) {
        return decimal.negative ? -0.0 : 0.0;
    }
    std::string text(decimal.mantissa);
    if (text.front() == '.') {
        text.insert(text.begin(), '0');
    }
    if (decimal.hasExponent) {
        text += 'e' + std::to_string(decimal.exponent);
    }
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    (void)end;
    if (error == std::errc::result_out_of_range) {
        // Too large gives infinity, too small gives zero, as strtod would.
        value = magnitude + decimal.exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    } else if (error != std::errc()) {
        value = 0;
    }
    return decimal.negative ? -value : value;
}

std::int64_t decimalToInt64(const DecimalPrefix& decimal) {
    if (decimal.hasExponent) {
        return saturatingInt64(decimalToDouble(decimal));
    }
    constexpr std::uint64_t limit = 9223372036854775808ULL;  // 2^63
    std::uint64_t magnitude = 0;
    for (const char c : decimal.integerDigits) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(c - '0');
        if (magnitude > limit) {
            magnitude = limit;
            break;
        }
    }
    if (decimal.negative) {
        return magnitude >= limit ? std::numeric_limits<std::int64_t>::min()
                                  : -static_cast<std::int64_t>(magnitude);
    }
    return saturatingInt64(magnitude);
}

}  // namespace tb
