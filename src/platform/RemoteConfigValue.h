#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace tb {

// A number of the remote store, as a double and as a whole number (a fraction is cut toward
// zero; a whole number too large for 64 bits stops at the nearest bound).
struct RemoteConfigNumber {
    double doubleValue = 0;
    std::int64_t integerValue = 0;
};

// One value of the remote store: a registered default or a value the config service sent,
// kept as the JSON it came as (any JSON type), or no value at all. The app reads it through
// three views; a value of the wrong type reads by their rules rather than failing.
class RemoteConfigValue {
  public:
    // No value: false, no number, empty text.
    RemoteConfigValue() = default;

    static RemoteConfigValue boolean(bool value);
    static RemoteConfigValue integer(std::int64_t value);
    static RemoteConfigValue string(const std::string& value);
    // Nothing when `text` is not one JSON value.
    static std::optional<RemoteConfigValue> fromJson(const std::string& text);

    bool hasValue() const { return json_.has_value(); }
    // The value as compact JSON text; "null" when there is none.
    std::string jsonText() const { return json_.value_or("null"); }

    // true for JSON true, a number other than 0, and the texts "true", "yes" and "1" (in any
    // case); false for everything else.
    bool boolValue() const;
    // Only a JSON number is a number: the text "12" is not one.
    std::optional<RemoteConfigNumber> numberValue() const;
    // A JSON string as it is; no value and null as ""; any other value as its JSON text.
    std::string stringValue() const;

    bool operator==(const RemoteConfigValue&) const = default;

  private:
    explicit RemoteConfigValue(std::string json) : json_(std::move(json)) {}

    std::optional<std::string> json_;
};

}  // namespace tb
