#include "api/FormParameters.h"

#include <cctype>
#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "core/URLComponents.h"
#include "platform/PercentEncoding.h"

namespace tb {

namespace {

std::string numberText(const nlohmann::json& number) {
    if (number.is_number_float()) {
        const double value = number.get<double>();
        if (std::isfinite(value) && value == std::trunc(value) &&
            std::fabs(value) < static_cast<double>(std::numeric_limits<std::int64_t>::max())) {
            return std::to_string(static_cast<std::int64_t>(value));
        }
    }
    return number.dump();
}

void appendPairs(const std::string& key, const nlohmann::json& value, FormPairs& pairs) {
    if (value.is_object()) {
        // nlohmann keeps object members ordered by key already.
        for (const auto& [member, nested] : value.items()) {
            appendPairs(key.empty() ? member : key + "[" + member + "]", nested, pairs);
        }
    } else if (value.is_array()) {
        for (const auto& element : value) {
            appendPairs(key + "[]", element, pairs);
        }
    } else if (value.is_string()) {
        pairs.push_back({key, value.get<std::string>()});
    } else if (value.is_boolean()) {
        pairs.push_back({key, value.get<bool>() ? "1" : "0"});
    } else if (value.is_number()) {
        pairs.push_back({key, numberText(value)});
    } else {
        pairs.push_back({key, std::nullopt});
    }
}

// What a URL query may hold besides escapes: unreserved, sub-delims, ":", "@", "/", "?".
bool isQueryCharacter(char c) {
    const auto u = static_cast<unsigned char>(c);
    if ((u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9')) {
        return true;
    }
    return std::string_view("-._~!$&'()*+,;=:@/?").find(c) != std::string_view::npos;
}

bool isHexDigit(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

std::optional<std::string> percentDecode(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size() || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) {
                return std::nullopt;
            }
            i += 2;
        } else if (!isQueryCharacter(text[i])) {
            return std::nullopt;
        }
    }
    return URLComponents::percentDecode(std::string(text));
}

}  // namespace

FormPairs flattenFormParameters(const nlohmann::json& parameters) {
    FormPairs pairs;
    if (parameters.is_object()) {
        appendPairs("", parameters, pairs);
    }
    return pairs;
}

std::string formQueryString(const FormPairs& pairs) {
    std::string query;
    for (const auto& pair : pairs) {
        if (!query.empty()) {
            query += '&';
        }
        query += percentEncodeFormKey(pair.key);
        if (pair.value) {
            query += '=';
            query += percentEncodeQueryValue(*pair.value);
        }
    }
    return query;
}

std::optional<FormPairs> parseQueryItems(std::string_view query) {
    FormPairs items;
    while (!query.empty()) {
        const auto end = query.find('&');
        const std::string_view item = query.substr(0, end);
        const auto equals = item.find('=');
        const auto name = percentDecode(item.substr(0, equals));
        if (!name) {
            return std::nullopt;
        }
        std::optional<std::string> value;
        if (equals != std::string_view::npos) {
            value = percentDecode(item.substr(equals + 1));
            if (!value) {
                return std::nullopt;
            }
        }
        items.push_back({*name, std::move(value)});
        if (end == std::string_view::npos) {
            break;
        }
        query.remove_prefix(end + 1);
    }
    return items;
}

}  // namespace tb
