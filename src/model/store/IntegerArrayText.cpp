#include "model/store/IntegerArrayText.h"

#include <charconv>

namespace tb {

std::string IntegerArrayText::encode(const std::vector<std::int64_t>& values) {
    std::string text;
    text.reserve(values.size() * 4 + 2);
    text += '[';
    char buffer[24];
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) {
            text += ',';
        }
        auto result = std::to_chars(buffer, buffer + sizeof buffer, values[i]);
        text.append(buffer, result.ptr);
    }
    text += ']';
    return text;
}

std::optional<std::vector<std::int64_t>> IntegerArrayText::decode(std::string_view text) {
    auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
    std::size_t at = 0;
    auto skipSpace = [&] {
        while (at < text.size() && isSpace(text[at])) {
            ++at;
        }
    };
    skipSpace();
    if (at >= text.size() || text[at] != '[') {
        return std::nullopt;
    }
    ++at;
    std::vector<std::int64_t> values;
    skipSpace();
    if (at < text.size() && text[at] == ']') {
        ++at;
        skipSpace();
        return at == text.size() ? std::optional(values) : std::nullopt;
    }
    while (at < text.size()) {
        std::int64_t value = 0;
        auto result = std::from_chars(text.data() + at, text.data() + text.size(), value);
        if (result.ec != std::errc()) {
            return std::nullopt;
        }
        values.push_back(value);
        at = static_cast<std::size_t>(result.ptr - text.data());
        skipSpace();
        if (at < text.size() && text[at] == ',') {
            ++at;
            skipSpace();
            continue;
        }
        if (at < text.size() && text[at] == ']') {
            ++at;
            skipSpace();
            return at == text.size() ? std::optional(values) : std::nullopt;
        }
        return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace tb
