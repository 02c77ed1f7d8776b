#include "platform/JSON.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "platform/JsonLimits.h"
#include "platform/Utf8.h"

namespace tb {

namespace {

const nlohmann::json& sharedNull() {
    static const nlohmann::json null;
    return null;
}

constexpr double kInt64Limit = 9223372036854775808.0;  // 2^63

// Truncates toward zero and saturates at the ends of int64; NaN is 0.
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

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

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

// Integer part of a decimal text, exact for every int64, saturated beyond.
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

// The index just past the string literal that opens at `quote`.
size_t endOfStringLiteral(std::string_view text, size_t quote) {
    size_t i = quote + 1;
    while (i < text.size() && text[i] != '"') {
        i += text[i] == '\\' ? 2 : 1;
    }
    return std::min(i + 1, text.size());
}

bool isNumberCharacter(char c) {
    return isDigit(c) || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-';
}

// The text with every number too large for a double written as the largest double of its
// sign, or nothing when no number overflows. The parser refuses a document with such a number
// outright; the app would rather read it as "very large" and keep the rest of the answer.
std::optional<std::string> withOverflowingNumbersClamped(std::string_view text) {
    std::string result;
    size_t copiedUpTo = 0;
    size_t i = 0;
    while (i < text.size()) {
        if (text[i] == '"') {
            i = endOfStringLiteral(text, i);
            continue;
        }
        if (text[i] != '-' && !isDigit(text[i])) {
            ++i;
            continue;
        }
        size_t end = i + 1;
        while (end < text.size() && isNumberCharacter(text[end])) {
            ++end;
        }
        const auto decimal = scanDecimal(text.substr(i, end - i));
        if (decimal && std::isinf(decimalToDouble(*decimal))) {
            result.append(text.substr(copiedUpTo, i - copiedUpTo));
            result += decimal->negative ? "-1.7976931348623157e308" : "1.7976931348623157e308";
            copiedUpTo = end;
        }
        i = end;
    }
    if (copiedUpTo == 0) {
        return std::nullopt;
    }
    result.append(text.substr(copiedUpTo));
    return result;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace

JSON::JSON(const nlohmann::json& value)
    : root_(std::make_shared<const nlohmann::json>(value)), node_(root_.get()) {}

JSON::JSON(nlohmann::json&& value)
    : root_(std::make_shared<const nlohmann::json>(std::move(value))), node_(root_.get()) {}

JSON::JSON(std::shared_ptr<const nlohmann::json> root, const nlohmann::json* node)
    : root_(std::move(root)), node_(node) {}

JSON JSON::parse(std::string_view text) {
    // The nesting guard runs first: a hostile body must not reach any recursive walk.
    if (!jsonNestingWithin(text, kMaxJsonDepth)) {
        return JSON();
    }
    // The parser rejects the whole text on one bad byte inside a string; a stray byte in
    // one title must not cost the listener the rest of the list. Repairing never touches
    // ASCII, so quotes and brackets stay where they were.
    std::string repaired;
    if (!isValidUtf8(text)) {
        repaired = repairedUtf8(text);
        text = repaired;
    }
    auto parsed = nlohmann::json::parse(text.begin(), text.end(), nullptr, false);
    if (parsed.is_discarded()) {
        const auto clamped = withOverflowingNumbersClamped(text);
        if (!clamped) {
            return JSON();
        }
        parsed = nlohmann::json::parse(*clamped, nullptr, false);
        if (parsed.is_discarded()) {
            return JSON();
        }
    }
    return JSON(std::move(parsed));
}

JSON JSON::operator[](std::string_view key) const {
    if (node_ == nullptr || !node_->is_object()) {
        return JSON();
    }
    const auto found = node_->find(key);
    if (found == node_->end()) {
        return JSON();
    }
    return JSON(root_, &*found);
}

JSON JSON::operator[](std::size_t index) const {
    if (node_ == nullptr || !node_->is_array() || index >= node_->size()) {
        return JSON();
    }
    return JSON(root_, &(*node_)[index]);
}

JSON JSON::operator[](int index) const {
    if (index < 0) {
        return JSON();
    }
    return (*this)[static_cast<std::size_t>(index)];
}

JSON::Type JSON::type() const {
    if (node_ == nullptr) {
        return Type::null;
    }
    switch (node_->type()) {
        case nlohmann::json::value_t::boolean:
            return Type::boolean;
        case nlohmann::json::value_t::number_integer:
        case nlohmann::json::value_t::number_unsigned:
        case nlohmann::json::value_t::number_float:
            return Type::number;
        case nlohmann::json::value_t::string:
            return Type::string;
        case nlohmann::json::value_t::array:
            return Type::array;
        case nlohmann::json::value_t::object:
            return Type::dictionary;
        default:
            return Type::null;  // null, binary, discarded
    }
}

std::optional<std::string> JSON::string() const {
    if (!isString()) {
        return std::nullopt;
    }
    return node_->get_ref<const std::string&>();
}

std::optional<bool> JSON::boolean() const {
    if (!isBool()) {
        return std::nullopt;
    }
    return node_->get<bool>();
}

std::optional<std::int64_t> JSON::int64() const {
    if (!isNumber() && !isBool()) {
        return std::nullopt;
    }
    return int64Value();
}

std::optional<double> JSON::number() const {
    if (!isNumber() && !isBool()) {
        return std::nullopt;
    }
    return doubleValue();
}

std::optional<std::vector<JSON>> JSON::array() const {
    if (!isArray()) {
        return std::nullopt;
    }
    return arrayValue();
}

std::optional<std::map<std::string, JSON>> JSON::dictionary() const {
    if (!isDictionary()) {
        return std::nullopt;
    }
    return dictionaryValue();
}

std::string JSON::stringValue() const {
    switch (type()) {
        case Type::string:
            return node_->get_ref<const std::string&>();
        case Type::boolean:
            return node_->get<bool>() ? "true" : "false";
        case Type::number:
            if (node_->is_number_integer() && !node_->is_number_unsigned()) {
                return std::to_string(node_->get<std::int64_t>());
            }
            if (node_->is_number_unsigned()) {
                return std::to_string(node_->get<std::uint64_t>());
            }
            return numberDescription(node_->get<double>());
        default:
            return "";
    }
}

bool JSON::boolValue() const {
    switch (type()) {
        case Type::boolean:
            return node_->get<bool>();
        case Type::number:
            return node_->is_number_float() ? node_->get<double>() != 0.0
                                            : node_->get<std::int64_t>() != 0;
        case Type::string: {
            const auto& text = node_->get_ref<const std::string&>();
            for (const char* truth : {"true", "y", "t", "yes", "1"}) {
                if (equalsIgnoringCase(text, truth)) {
                    return true;
                }
            }
            return false;
        }
        default:
            return false;
    }
}

std::int64_t JSON::int64Value() const {
    switch (type()) {
        case Type::boolean:
            return node_->get<bool>() ? 1 : 0;
        case Type::number:
            if (node_->is_number_unsigned()) {
                return saturatingInt64(node_->get<std::uint64_t>());
            }
            if (node_->is_number_integer()) {
                return node_->get<std::int64_t>();
            }
            return saturatingInt64(node_->get<double>());
        case Type::string: {
            const auto decimal = scanDecimal(node_->get_ref<const std::string&>());
            return decimal ? decimalToInt64(*decimal) : 0;
        }
        default:
            return 0;
    }
}

double JSON::doubleValue() const {
    switch (type()) {
        case Type::boolean:
            return node_->get<bool>() ? 1.0 : 0.0;
        case Type::number:
            return node_->get<double>();
        case Type::string: {
            const auto decimal = scanDecimal(node_->get_ref<const std::string&>());
            return decimal ? decimalToDouble(*decimal) : 0.0;
        }
        default:
            return 0.0;
    }
}

std::vector<JSON> JSON::arrayValue() const {
    std::vector<JSON> result;
    if (isArray()) {
        result.reserve(node_->size());
        for (const auto& element : *node_) {
            result.push_back(JSON(root_, &element));
        }
    }
    return result;
}

std::map<std::string, JSON> JSON::dictionaryValue() const {
    std::map<std::string, JSON> result;
    if (isDictionary()) {
        for (auto entry = node_->begin(); entry != node_->end(); ++entry) {
            result.emplace(entry.key(), JSON(root_, &entry.value()));
        }
    }
    return result;
}

std::size_t JSON::count() const {
    return isArray() || isDictionary() ? node_->size() : 0;
}

const nlohmann::json& JSON::raw() const {
    return node_ != nullptr ? *node_ : sharedNull();
}

std::string JSON::dump() const {
    return raw().dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool JSON::operator==(const JSON& other) const {
    if (exists() != other.exists()) {
        return false;
    }
    return raw() == other.raw();
}

std::string JSON::numberDescription(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    // Whole values are written in full up to sixteen digits, as a "%.16g" would.
    constexpr double kSixteenDigits = 1e16;
    if (std::trunc(value) == value && std::fabs(value) < kSixteenDigits) {
        return std::to_string(static_cast<std::int64_t>(value));
    }
    char buffer[64];
    const auto [end, error] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general);
    if (error != std::errc()) {
        return "";
    }
    return std::string(buffer, end);
}

}  // namespace tb
