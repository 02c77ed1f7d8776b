#include "platform/JSON.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "platform/DecimalText.h"
#include "platform/JsonLimits.h"
#include "platform/StringUtil.h"
#include "platform/Utf8.h"

namespace tb {

namespace {

const nlohmann::json& sharedNull() {
    static const nlohmann::json null;
    return null;
}

}  // namespace

JSON::JSON(const nlohmann::json& value)
    : root_(std::make_shared<const nlohmann::json>(value)), node_(root_.get()) {}

JSON::JSON(nlohmann::json&& value)
    : root_(std::make_shared<const nlohmann::json>(std::move(value))), node_(root_.get()) {}

JSON::JSON(std::shared_ptr<const nlohmann::json> root, const nlohmann::json* node)
    : root_(std::move(root)), node_(node) {}

JSON JSON::parse(std::string_view text) {
    // The nesting guard runs first: a hostile body must not reach any recursive walk.
    if (!jsonNestingWithin(text, kMaxJsonDepth)) {
        return JSON();
    }
    // The parser rejects the whole text on one bad byte inside a string; a stray byte in
    // one title must not cost the listener the rest of the list. Repairing never touches
    // ASCII, so quotes and brackets stay where they were.
    std::string repaired;
    if (!isValidUtf8(text)) {
        repaired = repairedUtf8(text);
        text = repaired;
    }
    auto parsed = nlohmann::json::parse(text.begin(), text.end(), nullptr, false);
    if (parsed.is_discarded()) {
        const auto clamped = withOverflowingNumbersClamped(text);
        if (!clamped) {
            return JSON();
        }
        parsed = nlohmann::json::parse(*clamped, nullptr, false);
        if (parsed.is_discarded()) {
            return JSON();
        }
    }
    return JSON(std::move(parsed));
}

JSON JSON::operator[](std::string_view key) const {
    if (node_ == nullptr || !node_->is_object()) {
        return JSON();
    }
    const auto found = node_->find(key);
    if (found == node_->end()) {
        return JSON();
    }
    return JSON(root_, &*found);
}

JSON JSON::operator[](std::size_t index) const {
    if (node_ == nullptr || !node_->is_array() || index >= node_->size()) {
        return JSON();
    }
    return JSON(root_, &(*node_)[index]);
}

JSON JSON::operator[](int index) const {
    if (index < 0) {
        return JSON();
    }
    return (*this)[static_cast<std::size_t>(index)];
}

JSON::Type JSON::type() const {
    if (node_ == nullptr) {
        return Type::null;
    }
    switch (node_->type()) {
        case nlohmann::json::value_t::boolean:
            return Type::boolean;
        case nlohmann::json::value_t::number_integer:
        case nlohmann::json::value_t::number_unsigned:
        case nlohmann::json::value_t::number_float:
            return Type::number;
        case nlohmann::json::value_t::string:
            return Type::string;
        case nlohmann::json::value_t::array:
            return Type::array;
        case nlohmann::json::value_t::object:
            return Type::dictionary;
        default:
            return Type::null;  // null, binary, discarded
    }
}

std::optional<std::string> JSON::string() const {
    if (!isString()) {
        return std::nullopt;
    }
    return node_->get_ref<const std::string&>();
}

std::optional<bool> JSON::boolean() const {
    if (!isBool()) {
        return std::nullopt;
    }
    return node_->get<bool>();
}

std::optional<std::int64_t> JSON::int64() const {
    if (!isNumber() && !isBool()) {
        return std::nullopt;
    }
    return int64Value();
}

std::optional<double> JSON::number() const {
    if (!isNumber() && !isBool()) {
        return std::nullopt;
    }
    return doubleValue();
}

std::optional<std::vector<JSON>> JSON::array() const {
    if (!isArray()) {
        return std::nullopt;
    }
    return arrayValue();
}

std::optional<std::map<std::string, JSON>> JSON::dictionary() const {
    if (!isDictionary()) {
        return std::nullopt;
    }
    return dictionaryValue();
}

std::string JSON::stringValue() const {
    switch (type()) {
        case Type::string:
            return node_->get_ref<const std::string&>();
        case Type::boolean:
            return node_->get<bool>() ? "true" : "false";
        case Type::number:
            if (node_->is_number_integer() && !node_->is_number_unsigned()) {
                return std::to_string(node_->get<std::int64_t>());
            }
            if (node_->is_number_unsigned()) {
                return std::to_string(node_->get<std::uint64_t>());
            }
            return numberDescription(node_->get<double>());
        default:
            return "";
    }
}

bool JSON::boolValue() const {
    switch (type()) {
        case Type::boolean:
            return node_->get<bool>();
        case Type::number:
            return node_->is_number_float() ? node_->get<double>() != 0.0
                                            : node_->get<std::int64_t>() != 0;
        case Type::string: {
            const auto& text = node_->get_ref<const std::string&>();
            for (const char* truth : {"true", "y", "t", "yes", "1"}) {
                if (equalsIgnoringCase(text, truth)) {
                    return true;
                }
            }
            return false;
        }
        default:
            return false;
    }
}

std::int64_t JSON::int64Value() const {
    switch (type()) {
        case Type::boolean:
            return node_->get<bool>() ? 1 : 0;
        case Type::number:
            if (node_->is_number_unsigned()) {
                return saturatingInt64(node_->get<std::uint64_t>());
            }
            if (node_->is_number_integer()) {
                return node_->get<std::int64_t>();
            }
            return saturatingInt64(node_->get<double>());
        case Type::string: {
            const auto decimal = scanDecimal(node_->get_ref<const std::string&>());
            return decimal ? decimalToInt64(*decimal) : 0;
        }
        default:
            return 0;
    }
}

double JSON::doubleValue() const {
    switch (type()) {
        case Type::boolean:
            return node_->get<bool>() ? 1.0 : 0.0;
        case Type::number:
            return node_->get<double>();
        case Type::string: {
            const auto decimal = scanDecimal(node_->get_ref<const std::string&>());
            return decimal ? decimalToDouble(*decimal) : 0.0;
        }
        default:
            return 0.0;
    }
}

std::vector<JSON> JSON::arrayValue() const {
    std::vector<JSON> result;
    if (isArray()) {
        result.reserve(node_->size());
        for (const auto& element : *node_) {
            result.push_back(JSON(root_, &element));
        }
    }
    return result;
}

std::map<std::string, JSON> JSON::dictionaryValue() const {
    std::map<std::string, JSON> result;
    if (isDictionary()) {
        for (auto entry = node_->begin(); entry != node_->end(); ++entry) {
            result.emplace(entry.key(), JSON(root_, &entry.value()));
        }
    }
    return result;
}

std::size_t JSON::count() const {
    return isArray() || isDictionary() ? node_->size() : 0;
}

const nlohmann::json& JSON::raw() const {
    return node_ != nullptr ? *node_ : sharedNull();
}

std::string JSON::dump() const {
    return raw().dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool JSON::operator==(const JSON& other) const {
    if (exists() != other.exists()) {
        return false;
    }
    return raw() == other.raw();
}

std::string JSON::numberDescription(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    // Whole values are written in full up to sixteen digits, as a "%.16g" would.
    constexpr double kSixteenDigits = 1e16;
    if (std::trunc(value) == value && std::fabs(value) < kSixteenDigits) {
        return std::to_string(static_cast<std::int64_t>(value));
    }
    char buffer[64];
    const auto [end, error] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general);
    if (error != std::errc()) {
        return "";
    }
    return std::string(buffer, end);
}

}  // namespace tb
