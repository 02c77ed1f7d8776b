#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace tb {

// A lenient, read-only view of a JSON value, the way the app's mappers read the service's
// answers: a missing key or a value of the wrong kind reads as null, and the "value" readers
// convert what they find (a number read as a string gives its description, "yes" read as a
// bool is true, text read as a number is parsed). Nothing here throws.
//
// A JSON shares the document it was taken from and points at one node in it, so copies and
// subscripts are cheap and never copy the tree.
class JSON {
  public:
    enum class Type { null, boolean, number, string, array, dictionary };

    // Null that does not exist (a missing key).
    JSON() = default;
    explicit JSON(const nlohmann::json& value);
    explicit JSON(nlohmann::json&& value);

    // Parses foreign text. Malformed text and nesting deeper than kMaxJsonDepth give a null
    // that does not exist. Ill-formed UTF-8 is replaced by U+FFFD (see repairedUtf8), and a
    // number too large for a double reads as the largest double of its sign, so that one bad
    // value doesn't cost the rest of the document.
    static JSON parse(std::string_view text);

    // Subscripts. A missing key, an index out of range or a container of the other kind
    // give a null that does not exist.
    JSON operator[](std::string_view key) const;
    JSON operator[](const char* key) const { return (*this)[std::string_view(key)]; }
    JSON operator[](const std::string& key) const { return (*this)[std::string_view(key)]; }
    JSON operator[](std::size_t index) const;
    JSON operator[](int index) const;

    // False for a missing key or index (a present null exists).
    bool exists() const { return node_ != nullptr; }
    Type type() const;
    bool isNull() const { return type() == Type::null; }
    bool isBool() const { return type() == Type::boolean; }
    bool isNumber() const { return type() == Type::number; }
    bool isString() const { return type() == Type::string; }
    bool isArray() const { return type() == Type::array; }
    bool isDictionary() const { return type() == Type::dictionary; }

    // Optional readers: a value only when the node is of that kind. `int64` and `number`
    // accept numbers and bools (as 1 and 0), as a number box would.
    std::optional<std::string> string() const;
    std::optional<bool> boolean() const;
    std::optional<std::int64_t> int64() const;
    std::optional<double> number() const;
    std::optional<std::vector<JSON>> array() const;
    std::optional<std::map<std::string, JSON>> dictionary() const;

    // Value readers, never empty-handed:
    //   stringValue  string; number -> its description (see numberDescription); bool ->
    //                "true"/"false"; else ""
    //   boolValue    bool; number != 0; string "true", "y", "t", "yes" or "1" in any case
    //   intValue,    number truncated toward zero, saturated at the ends of int64; string
    //   int64Value   parsed as a decimal number (leading part, as a decimal box reads it),
    //                likewise; bool 1/0; else 0. (The app's integers are 64-bit.)
    //   doubleValue  number; string parsed as a decimal number; bool 1/0; else 0
    std::string stringValue() const;
    bool boolValue() const;
    std::int64_t intValue() const { return int64Value(); }
    std::int64_t int64Value() const;
    double doubleValue() const;
    std::vector<JSON> arrayValue() const;
    std::map<std::string, JSON> dictionaryValue() const;

    // Elements of an array or entries of a dictionary; 0 otherwise.
    std::size_t count() const;

    // The node itself (a shared null when missing).
    const nlohmann::json& raw() const;
    // Compact text of the node; invalid UTF-8 in strings is replaced, never thrown on.
    std::string dump() const;

    // Same kind and same contents (two missing values are equal).
    bool operator==(const JSON& other) const;

    // How a number is written as text: integers plainly; a double with a whole value below
    // 1e16 in magnitude without a fraction ("3", not "3.0"); other doubles in the shortest
    // "%g" form that reads back to the same value ("0.1", "1234.5", "1e+22", "1e-07").
    static std::string numberDescription(double value);

  private:
    JSON(std::shared_ptr<const nlohmann::json> root, const nlohmann::json* node);

    std::shared_ptr<const nlohmann::json> root_;
    const nlohmann::json* node_ = nullptr;
};

}  // namespace tb
