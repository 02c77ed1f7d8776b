#include "accounts/TBKeychainManager.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "platform/JsonLimits.h"
#include "platform/KeychainStore.h"

namespace tb {

namespace {

using nlohmann::json;

// The wrapper's member.
constexpr const char* kValue = "value";

std::string encodeWrapper(json value) {
    return json{{kValue, std::move(value)}}.dump();
}

// The wrapped value, or nothing when the entry is absent, is not a wrapper, or holds none.
std::optional<json> decodeWrapper(const std::optional<std::string>& data) {
    if (!data || !jsonNestingWithin(*data)) {
        return std::nullopt;
    }
    auto parsed = json::parse(*data, nullptr, false);
    if (!parsed.is_object()) {
        return std::nullopt;
    }
    const auto found = parsed.find(kValue);
    if (found == parsed.end() || found->is_null()) {
        return std::nullopt;
    }
    return *found;
}

std::optional<std::string> decodeString(const json& value) {
    if (!value.is_string()) {
        return std::nullopt;
    }
    return value.get<std::string>();
}

// A whole number; a double counts when it is one exactly.
std::optional<std::int64_t> decodeInt(const json& value) {
    if (value.is_number_integer()) {
        if (value.is_number_unsigned() &&
            value.get<std::uint64_t>() >
                static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            return std::nullopt;
        }
        return value.get<std::int64_t>();
    }
    if (value.is_number_float()) {
        const double real = value.get<double>();
        if (std::trunc(real) == real && real >= -9.2e18 && real <= 9.2e18) {
            return static_cast<std::int64_t>(real);
        }
    }
    return std::nullopt;
}

std::optional<double> decodeDouble(const json& value) {
    if (!value.is_number()) {
        return std::nullopt;
    }
    return value.get<double>();
}

std::optional<bool> decodeBool(const json& value) {
    if (!value.is_boolean()) {
        return std::nullopt;
    }
    return value.get<bool>();
}

// The older store's text after leading blanks and a "+" sign.
const char* numberStart(const std::string& text) {
    const char* start = text.c_str();
    while (*start != '\0' && std::isspace(static_cast<unsigned char>(*start))) {
        ++start;
    }
    if (*start == '+') {
        ++start;
    }
    return start;
}

// A number of the older store: its leading digits are the value ("42", " 42 items"); text
// without any is not a number.
std::optional<std::int64_t> olderInt(const std::string& text) {
    const char* start = numberStart(text);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(start, text.c_str() + text.size(), value);
    if (error != std::errc()) {
        return std::nullopt;
    }
    return value;
}

std::optional<double> olderDouble(const std::string& text) {
    const char* start = numberStart(text);
    double value = 0.0;
    const auto [end, error] = std::from_chars(start, text.c_str() + text.size(), value);
    if (error != std::errc() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

// Writes the wrapped value, or removes the key for none; then clears the older store's key
// either way, so that a value never returns from there. A value the wrapper can't hold
// (not a finite number) is a refused write: the current entry stays as it was.
void writeWrapped(KeychainStore& current,
                  KeychainStore& older,
                  const std::string& key,
                  const std::optional<json>& value) {
    if (!value) {
        current.removeObjectForKey(key);
    } else if (!value->is_number_float() || std::isfinite(value->get<double>())) {
        current.setData(key, encodeWrapper(*value));
    }
    older.removeObjectForKey(key);
}

template <typename T>
std::optional<json> toJson(const std::optional<T>& value) {
    return value ? std::optional<json>(json(*value)) : std::nullopt;
}

// A value of the current store; else one of the older store, which moves to the current
// store at this read.
template <typename T>
std::optional<T> readMigrating(KeychainStore& current,
                               KeychainStore& older,
                               const std::string& key,
                               std::optional<T> (*fromWrapper)(const json&),
                               std::optional<T> (*fromOlder)(const std::string&)) {
    if (const auto wrapped = decodeWrapper(current.dataForKey(key))) {
        if (auto value = fromWrapper(*wrapped)) {
            return value;
        }
    }
    const auto text = older.dataForKey(key);
    auto value = text ? fromOlder(*text) : std::nullopt;
    if (value) {
        writeWrapped(current, older, key, json(*value));
    }
    return value;
}

std::optional<std::string> olderString(const std::string& text) {
    return text;
}

}  // namespace

TBKeychainManager::TBKeychainManager(KeychainStore& current, KeychainStore& older)
    : current_(current), older_(older) {}

std::optional<std::string> TBKeychainManager::stringForKey(const std::string& key) {
    return readMigrating(current_, older_, key, decodeString, olderString);
}

void TBKeychainManager::setWithString(const std::optional<std::string>& value,
                                      const std::string& key) {
    writeWrapped(current_, older_, key, toJson(value));
}

std::optional<std::int64_t> TBKeychainManager::intForKey(const std::string& key) {
    return readMigrating(current_, older_, key, decodeInt, olderInt);
}

void TBKeychainManager::setWithInt(std::optional<std::int64_t> value, const std::string& key) {
    writeWrapped(current_, older_, key, toJson(value));
}

std::optional<double> TBKeychainManager::doubleForKey(const std::string& key) {
    return readMigrating(current_, older_, key, decodeDouble, olderDouble);
}

void TBKeychainManager::setWithDouble(std::optional<double> value, const std::string& key) {
    writeWrapped(current_, older_, key, toJson(value));
}

bool TBKeychainManager::boolForKey(const std::string& key) {
    const auto wrapped = decodeWrapper(current_.dataForKey(key));
    return wrapped && decodeBool(*wrapped).value_or(false);
}

void TBKeychainManager::setWithBool(std::optional<bool> value, const std::string& key) {
    writeWrapped(current_, older_, key, toJson(value));
}

void TBKeychainManager::removeObjectForKey(const std::string& key) {
    current_.removeObjectForKey(key);
    older_.removeObjectForKey(key);
}

}  // namespace tb
