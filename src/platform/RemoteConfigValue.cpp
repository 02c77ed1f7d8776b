#include "platform/RemoteConfigValue.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "platform/JsonLimits.h"

namespace tb {

namespace {

using nlohmann::json;

json parsed(const std::optional<std::string>& text) {
    return text ? json::parse(*text, nullptr, false) : json();
}

std::int64_t wholePart(double value) {
    constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
    constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
    if (std::isnan(value)) {
        return 0;
    }
    // 2^63 is exactly representable; anything at or beyond it stops at the bound.
    if (value >= 9223372036854775808.0) {
        return kMax;
    }
    if (value <= static_cast<double>(kMin)) {
        return kMin;
    }
    return static_cast<std::int64_t>(std::trunc(value));
}

}  // namespace

RemoteConfigValue RemoteConfigValue::boolean(bool value) {
    return RemoteConfigValue(json(value).dump());
}

RemoteConfigValue RemoteConfigValue::integer(std::int64_t value) {
    return RemoteConfigValue(json(value).dump());
}

RemoteConfigValue RemoteConfigValue::string(const std::string& value) {
    return RemoteConfigValue(json(value).dump(-1, ' ', false, json::error_handler_t::replace));
}

std::optional<RemoteConfigValue> RemoteConfigValue::fromJson(const std::string& text) {
    if (!jsonNestingWithin(text)) {
        return std::nullopt;
    }
    const json value = json::parse(text, nullptr, false);
    if (value.is_discarded()) {
        return std::nullopt;
    }
    return RemoteConfigValue(value.dump(-1, ' ', false, json::error_handler_t::replace));
}

bool RemoteConfigValue::boolValue() const {
    const json value = parsed(json_);
    if (value.is_boolean()) {
        return value.get<bool>();
    }
    if (value.is_number()) {
        return value.get<double>() != 0;
    }
    if (value.is_string()) {
        std::string text = value.get<std::string>();
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        return text == "true" || text == "yes" || text == "1";
    }
    return false;
}

std::optional<RemoteConfigNumber> RemoteConfigValue::numberValue() const {
    const json value = parsed(json_);
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        const auto max = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        return RemoteConfigNumber{static_cast<double>(number),
                                  static_cast<std::int64_t>(std::min(number, max))};
    }
    if (value.is_number_integer()) {
        const auto number = value.get<std::int64_t>();
        return RemoteConfigNumber{static_cast<double>(number), number};
    }
    if (value.is_number_float()) {
        const auto number = value.get<double>();
        return RemoteConfigNumber{number, wholePart(number)};
    }
    return std::nullopt;
}

std::string RemoteConfigValue::stringValue() const {
    const json value = parsed(json_);
    if (value.is_string()) {
        return value.get<std::string>();
    }
    if (value.is_null()) {
        return "";
    }
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace tb
