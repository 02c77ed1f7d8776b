#include "model/store/PredicateArgument.h"

#include <cstdio>

namespace tb {

namespace {

void appendJsonString(std::string& out, const std::string& text) {
    out += '"';
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            out += escape;
        } else {
            out += c;
        }
    }
    out += '"';
}

}  // namespace

std::string PredicateArgument::literal(const Scalar& value, Style style) {
    if (std::holds_alternative<std::monostate>(value)) {
        return style == Style::json ? "null" : "NULL";
    }
    if (const bool* b = std::get_if<bool>(&value)) {
        return *b ? "1" : "0";
    }
    if (const std::int64_t* i = std::get_if<std::int64_t>(&value)) {
        return std::to_string(*i);
    }
    if (const double* d = std::get_if<double>(&value)) {
        char buffer[40];
        std::snprintf(buffer, sizeof buffer, "%.17g", *d);
        return buffer;
    }
    const std::string& text = std::get<std::string>(value);
    std::string out;
    if (style == Style::sql) {
        out = "'";
        for (char c : text) {
            out += c;
            if (c == '\'') {
                out += '\'';
            }
        }
        return out + "'";
    }
    appendJsonString(out, text);
    return out;
}

PredicateArgument::PredicateArgument(const std::vector<std::string>& values) : isArray_(true) {
    elements_.reserve(values.size());
    for (const std::string& value : values) {
        elements_.emplace_back(value);
    }
}

PredicateArgument::PredicateArgument(const std::vector<std::int64_t>& values) : isArray_(true) {
    elements_.reserve(values.size());
    for (std::int64_t value : values) {
        elements_.emplace_back(value);
    }
}

PredicateArgument PredicateArgument::array(std::vector<Scalar> elements) {
    PredicateArgument argument;
    argument.isArray_ = true;
    argument.elements_ = std::move(elements);
    return argument;
}

std::string PredicateArgument::elementsAsJson() const {
    std::string json = "[";
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        if (i > 0) {
            json += ',';
        }
        json += literal(elements_[i], Style::json);
    }
    json += ']';
    return json;
}

std::string PredicateArgument::description() const {
    if (!isArray_) {
        return literal(scalar_, Style::text);
    }
    std::string text = "{";
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        text += i > 0 ? ", " : "";
        text += literal(elements_[i], Style::text);
    }
    return text + "}";
}

}  // namespace tb
