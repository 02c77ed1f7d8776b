#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace tb {

// One name and value of a form body or query string. A pair without value ("flag" rather
// than "flag=") comes from a JSON null.
struct FormPair {
    std::string key;
    std::optional<std::string> value;

    bool operator==(const FormPair&) const = default;
};
using FormPairs = std::vector<FormPair>;

// The request parameters (a JSON object) as form pairs, the way form bodies carry nested
// values: an object's members in ascending order of their keys, a nested object as
// "key[member]", an array's elements in order as "key[]". Strings are taken as they are,
// numbers as their decimal text (integral floats without a fraction), true and false as "1"
// and "0". Empty arrays and objects give nothing; anything but an object gives no pairs.
// The signatures of the serializers sign exactly these pairs.
FormPairs flattenFormParameters(const nlohmann::json& parameters);

// "key=value&..." with keys in the form-key encoding and values in the query-value encoding.
std::string formQueryString(const FormPairs& pairs);

// The items of a URL query ("a=1&b&c=%2F"), percent-decoded ("+" stays a plus), in order;
// "b" has no value. Nothing when the text is not a valid query: a character a URL can't
// carry (space, quotes, "<>[]{}|\^`", non-ASCII) or a malformed escape.
std::optional<FormPairs> parseQueryItems(std::string_view query);

}  // namespace tb
