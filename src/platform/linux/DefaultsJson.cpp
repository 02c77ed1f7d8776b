#include "platform/linux/DefaultsJson.h"

#include <cmath>
#include <limits>
#include <string_view>

#include <nlohmann/json.hpp>

#include "platform/Base64.h"
#include "platform/Utf8.h"

namespace tb {

namespace {

using Json = nlohmann::json;

bool looksLikeTag(const DefaultsValue::Dictionary& dictionary) {
    return dictionary.size() == 1 && dictionary.begin()->first.starts_with("$");
}

Json taggedDouble(double value) {
    if (std::isnan(value)) {
        return Json{{"$double", "nan"}};
    }
    return Json{{"$double", value > 0 ? "inf" : "-inf"}};
}

std::optional<DefaultsValue> dictionaryFromJson(const Json& json) {
    DefaultsValue::Dictionary dictionary;
    for (const auto& [key, item] : json.items()) {
        auto value = defaultsValueFromJson(item);
        if (!value) {
            return std::nullopt;
        }
        dictionary.emplace(key, std::move(*value));
    }
    return DefaultsValue(std::move(dictionary));
}

std::optional<DefaultsValue> fromTag(const std::string& tag, const Json& body) {
    if (tag == "$dict") {
        return body.is_object() ? dictionaryFromJson(body) : std::nullopt;
    }
    if (!body.is_string()) {
        return std::nullopt;
    }
    const auto& text = body.get_ref<const std::string&>();
    if (tag == "$data" || tag == "$text") {
        auto bytes = base64Decode(text);
        if (!bytes) {
            return std::nullopt;
        }
        if (tag == "$text") {
            return DefaultsValue(std::move(*bytes));
        }
        return DefaultsValue(DefaultsData{{bytes->begin(), bytes->end()}});
    }
    if (tag == "$double") {
        if (text == "nan") {
            return DefaultsValue(std::numeric_limits<double>::quiet_NaN());
        }
        if (text == "inf" || text == "-inf") {
            const double infinity = std::numeric_limits<double>::infinity();
            return DefaultsValue(text == "inf" ? infinity : -infinity);
        }
    }
    return std::nullopt;
}

}  // namespace

Json defaultsValueToJson(const DefaultsValue& value) {
    struct Visitor {
        Json operator()(const std::string& text) const {
            if (isValidUtf8(text)) {
                return text;
            }
            return Json{{"$text", base64Encode(text)}};
        }
        Json operator()(bool flag) const { return flag; }
        Json operator()(std::int64_t integer) const { return integer; }
        Json operator()(double real) const {
            return std::isfinite(real) ? Json(real) : taggedDouble(real);
        }
        Json operator()(const DefaultsData& data) const {
            const std::string_view bytes(reinterpret_cast<const char*>(data.bytes.data()),
                                         data.bytes.size());
            return Json{{"$data", base64Encode(bytes)}};
        }
        Json operator()(const DefaultsValue::Array& array) const {
            Json items = Json::array();
            for (const auto& item : array) {
                items.push_back(defaultsValueToJson(item));
            }
            return items;
        }
        Json operator()(const DefaultsValue::Dictionary& dictionary) const {
            Json object = Json::object();
            for (const auto& [key, item] : dictionary) {
                object[key] = defaultsValueToJson(item);
            }
            return looksLikeTag(dictionary) ? Json{{"$dict", std::move(object)}} : object;
        }
    };
    return std::visit(Visitor{}, value.value);
}

std::optional<DefaultsValue> defaultsValueFromJson(const Json& json) {
    switch (json.type()) {
        case Json::value_t::string:
            return DefaultsValue(json.get<std::string>());
        case Json::value_t::boolean:
            return DefaultsValue(json.get<bool>());
        case Json::value_t::number_integer:
            return DefaultsValue(json.get<std::int64_t>());
        case Json::value_t::number_unsigned:
            if (json.get<std::uint64_t>() >
                static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
                return std::nullopt;
            }
            return DefaultsValue(json.get<std::int64_t>());
        case Json::value_t::number_float:
            return DefaultsValue(json.get<double>());
        case Json::value_t::array: {
            DefaultsValue::Array array;
            for (const auto& item : json) {
                auto value = defaultsValueFromJson(item);
                if (!value) {
                    return std::nullopt;
                }
                array.push_back(std::move(*value));
            }
            return DefaultsValue(std::move(array));
        }
        case Json::value_t::object:
            if (json.size() == 1 && json.begin().key().starts_with("$")) {
                return fromTag(json.begin().key(), json.begin().value());
            }
            return dictionaryFromJson(json);
        default:
            return std::nullopt;
    }
}

}  // namespace tb
