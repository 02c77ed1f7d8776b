#pragma once

#include <optional>

#include <nlohmann/json_fwd.hpp>

#include "platform/UserDefaults.h"

namespace tb {

// How a user defaults value is kept in JSON without losing its kind. Text, booleans,
// integers, finite doubles, arrays and dictionaries are themselves; the rest are one-key
// objects: {"$data": base64} for bytes, {"$text": base64} for text that is not UTF-8,
// {"$double": "nan" | "inf" | "-inf"}, and {"$dict": {...}} for a dictionary that would
// otherwise look like one of these tags.
nlohmann::json defaultsValueToJson(const DefaultsValue& value);

// The value back; nothing when the JSON is not something defaultsValueToJson makes.
std::optional<DefaultsValue> defaultsValueFromJson(const nlohmann::json& json);

}  // namespace tb
