#include "platform/UserDefaults.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "platform/DecimalText.h"
#include "platform/StringUtil.h"

namespace tb {

namespace {

double parseDouble(const std::string& text) {
    const std::string clean = trimmed(text);
    if (clean.empty()) {
        return 0.0;
    }
    char* end = nullptr;
    const double value = std::strtod(clean.c_str(), &end);
    return end == clean.c_str() ? 0.0 : value;
}

std::string decimalText(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.17g", value);
    return buffer;
}

}  // namespace

std::optional<std::string> UserDefaults::stringForKey(const std::string& key) const {
    const auto stored = objectForKey(key);
    if (!stored) {
        return std::nullopt;
    }
    if (const auto* text = std::get_if<std::string>(&stored->value)) {
        return *text;
    }
    if (const auto* integer = std::get_if<std::int64_t>(&stored->value)) {
        return std::to_string(*integer);
    }
    if (const auto* real = std::get_if<double>(&stored->value)) {
        return decimalText(*real);
    }
    if (const auto* flag = std::get_if<bool>(&stored->value)) {
        return std::string(*flag ? "1" : "0");
    }
    return std::nullopt;
}

bool UserDefaults::boolForKey(const std::string& key) const {
    const auto stored = objectForKey(key);
    if (!stored) {
        return false;
    }
    if (const auto* flag = std::get_if<bool>(&stored->value)) {
        return *flag;
    }
    if (const auto* integer = std::get_if<std::int64_t>(&stored->value)) {
        return *integer != 0;
    }
    if (const auto* real = std::get_if<double>(&stored->value)) {
        return *real != 0.0;
    }
    if (const auto* text = std::get_if<std::string>(&stored->value)) {
        const std::string word = lowercased(trimmed(*text));
        return word == "yes" || word == "true" || (!word.empty() && parseDouble(word) != 0.0);
    }
    return false;
}

std::int64_t UserDefaults::integerForKey(const std::string& key) const {
    const auto stored = objectForKey(key);
    if (!stored) {
        return 0;
    }
    if (const auto* integer = std::get_if<std::int64_t>(&stored->value)) {
        return *integer;
    }
    if (const auto* real = std::get_if<double>(&stored->value)) {
        return saturatingInt64(*real);
    }
    if (const auto* flag = std::get_if<bool>(&stored->value)) {
        return *flag ? 1 : 0;
    }
    if (const auto* text = std::get_if<std::string>(&stored->value)) {
        return saturatingInt64(parseDouble(*text));
    }
    return 0;
}

double UserDefaults::doubleForKey(const std::string& key) const {
    const auto stored = objectForKey(key);
    if (!stored) {
        return 0.0;
    }
    if (const auto* real = std::get_if<double>(&stored->value)) {
        return *real;
    }
    if (const auto* integer = std::get_if<std::int64_t>(&stored->value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* flag = std::get_if<bool>(&stored->value)) {
        return *flag ? 1.0 : 0.0;
    }
    if (const auto* text = std::get_if<std::string>(&stored->value)) {
        return parseDouble(*text);
    }
    return 0.0;
}

std::optional<DefaultsValue::Array> UserDefaults::arrayForKey(const std::string& key) const {
    const auto stored = objectForKey(key);
    if (stored) {
        if (const auto* array = std::get_if<DefaultsValue::Array>(&stored->value)) {
            return *array;
        }
    }
    return std::nullopt;
}

std::optional<DefaultsValue::Dictionary> UserDefaults::dictionaryForKey(
    const std::string& key) const {
    const auto stored = objectForKey(key);
    if (stored) {
        if (const auto* dictionary = std::get_if<DefaultsValue::Dictionary>(&stored->value)) {
            return *dictionary;
        }
    }
    return std::nullopt;
}

std::optional<DefaultsData> UserDefaults::dataForKey(const std::string& key) const {
    const auto stored = objectForKey(key);
    if (stored) {
        if (const auto* data = std::get_if<DefaultsData>(&stored->value)) {
            return *data;
        }
    }
    return std::nullopt;
}

}  // namespace tb
