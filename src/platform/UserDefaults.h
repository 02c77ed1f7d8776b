#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tb {

// Raw bytes stored under a key (the platform's data values).
struct DefaultsData {
    std::vector<std::uint8_t> bytes;
    bool operator==(const DefaultsData&) const = default;
};

// A value in the user defaults: text, boolean, integer, double, bytes, or an array or
// dictionary of values.
struct DefaultsValue {
    using Array = std::vector<DefaultsValue>;
    using Dictionary = std::map<std::string, DefaultsValue>;

    std::variant<std::string, bool, std::int64_t, double, DefaultsData, Array, Dictionary> value;

    DefaultsValue() : value(std::string()) {}
    DefaultsValue(std::string v) : value(std::move(v)) {}          // NOLINT: implicit on purpose
    DefaultsValue(const char* v) : value(std::string(v)) {}        // NOLINT
    DefaultsValue(bool v) : value(v) {}                            // NOLINT
    DefaultsValue(int v) : value(static_cast<std::int64_t>(v)) {}  // NOLINT
    DefaultsValue(std::int64_t v) : value(v) {}                    // NOLINT
    DefaultsValue(double v) : value(v) {}                          // NOLINT
    DefaultsValue(DefaultsData v) : value(std::move(v)) {}         // NOLINT
    DefaultsValue(Array v) : value(std::move(v)) {}                // NOLINT
    DefaultsValue(Dictionary v) : value(std::move(v)) {}           // NOLINT

    bool operator==(const DefaultsValue&) const = default;
};

// One suite of user defaults. Writes change the in-memory values at once; synchronize()
// makes them durable. The typed readers convert the way the platform's defaults do.
class UserDefaults {
  public:
    virtual ~UserDefaults() = default;

    virtual std::optional<DefaultsValue> objectForKey(const std::string& key) const = 0;
    virtual void setObject(const std::string& key, DefaultsValue value) = 0;
    virtual void removeObjectForKey(const std::string& key) = 0;
    virtual std::vector<std::string> allKeys() const = 0;

    // Writes the suite to durable storage. True on success. A value set and synchronized
    // survives the process being killed at any moment afterwards.
    virtual bool synchronize() = 0;

    // Text as stored; integers and doubles as their decimal text; anything else absent.
    std::optional<std::string> stringForKey(const std::string& key) const;
    // true for a true boolean, a non-zero number, or the texts "1", "yes", "true" (any case).
    bool boolForKey(const std::string& key) const;
    // Numbers truncated; booleans 0/1; numeric text parsed; anything else 0.
    std::int64_t integerForKey(const std::string& key) const;
    double doubleForKey(const std::string& key) const;
    std::optional<DefaultsValue::Array> arrayForKey(const std::string& key) const;
    std::optional<DefaultsValue::Dictionary> dictionaryForKey(const std::string& key) const;
    std::optional<DefaultsData> dataForKey(const std::string& key) const;

    void setString(const std::string& key, std::string value) { setObject(key, std::move(value)); }
    void setBool(const std::string& key, bool value) { setObject(key, value); }
    void setInteger(const std::string& key, std::int64_t value) { setObject(key, value); }
    void setDouble(const std::string& key, double value) { setObject(key, value); }
    void setArray(const std::string& key, DefaultsValue::Array value) {
        setObject(key, std::move(value));
    }
    void setData(const std::string& key, DefaultsData value) { setObject(key, std::move(value)); }
};

// The suites of this app: the standard one and named ones (the message extension's suite).
class UserDefaultsProvider {
  public:
    virtual ~UserDefaultsProvider() = default;
    virtual UserDefaults& standard() = 0;
    // A named suite, created empty on first use. Names are identifiers such as
    // "group.com.tunebrook.iphone.imessageextension"; they never become paths outside the
    // defaults folder.
    virtual UserDefaults& suite(const std::string& name) = 0;
};

}  // namespace tb
