#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tb {

// A value for a %@ of a predicate format: nil, a boolean, a number, a string, or (for IN)
// an array of those. Booleans are stored and compared as 0 and 1.
class PredicateArgument {
  public:
    using Scalar = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

    PredicateArgument() = default;  // nil
    PredicateArgument(std::nullptr_t) {}
    PredicateArgument(bool value) : scalar_(value) {}
    template <std::integral I>
    requires(!std::same_as<I, bool> && !std::same_as<I, char>) PredicateArgument(I value)
        : scalar_(static_cast<std::int64_t>(value)) {}
    PredicateArgument(double value) : scalar_(value) {}
    PredicateArgument(const char* value) : scalar_(std::string(value)) {}
    PredicateArgument(std::string value) : scalar_(std::move(value)) {}
    PredicateArgument(std::string_view value) : scalar_(std::string(value)) {}
    template <class T>
    PredicateArgument(const std::optional<T>& value) {
        if (value) {
            *this = PredicateArgument(*value);
        }
    }
    PredicateArgument(const std::vector<std::string>& values);
    PredicateArgument(const std::vector<std::int64_t>& values);

    static PredicateArgument array(std::vector<Scalar> elements);

    bool isArray() const { return isArray_; }
    bool isNil() const { return !isArray_ && std::holds_alternative<std::monostate>(scalar_); }
    const Scalar& scalar() const { return scalar_; }
    const std::vector<Scalar>& elements() const { return elements_; }

    // How a value is written as text: as an SQL literal ('it''s'), as JSON ("it's", null),
    // or for people (as JSON, with nil as NULL). Booleans are 1 and 0 in all three.
    enum class Style { sql, json, text };
    static std::string literal(const Scalar& value, Style style);

    // The array as a JSON array text, for SQL's json_each().
    std::string elementsAsJson() const;
    // For messages: "\"abc\"", "12", "NULL", "{\"a\", \"b\"}".
    std::string description() const;

  private:
    Scalar scalar_;
    bool isArray_ = false;
    std::vector<Scalar> elements_;
};

}  // namespace tb
