#include "platform/JsonLimits.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/DecimalText.h"

namespace tb {

namespace {

// The index just past the string literal that opens at `quote`.
size_t endOfStringLiteral(std::string_view text, size_t quote) {
    size_t i = quote + 1;
    while (i < text.size() && text[i] != '"') {
        i += text[i] == '\\' ? 2 : 1;
    }
    return std::min(i + 1, text.size());
}

bool isNumberCharacter(char c) {
    return (c >= '0' && c <= '9') || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-';
}

}  // namespace

bool jsonNestingWithin(std::string_view text, int maxDepth) {
    int depth = 0;
    bool inString = false;
    bool escaped = false;
    for (const char c : text) {
        if (inString) {
            if (escaped) {
                escaped = false;
            } else if (c == '\\') {
                escaped = true;
            } else if (c == '"') {
                inString = false;
            }
            continue;
        }
        switch (c) {
            case '"':
                inString = true;
                break;
            case '[':
            case '{':
                if (++depth > maxDepth) {
                    return false;
                }
                break;
            case ']':
            case '}':
                --depth;
                break;
            default:
                break;
        }
    }
    return true;
}

std::optional<std::string> withOverflowingNumbersClamped(std::string_view text) {
    std::string result;
    size_t copiedUpTo = 0;
    size_t i = 0;
    while (i < text.size()) {
        if (text[i] == '"') {
            i = endOfStringLiteral(text, i);
            continue;
        }
        if (text[i] != '-' && !(text[i] >= '0' && text[i] <= '9')) {
            ++i;
            continue;
        }
        size_t end = i + 1;
        while (end < text.size() && isNumberCharacter(text[end])) {
            ++end;
        }
        const auto decimal = scanDecimal(text.substr(i, end - i));
        if (decimal && std::isinf(decimalToDouble(*decimal))) {
            result.append(text.substr(copiedUpTo, i - copiedUpTo));
            result += decimal->negative ? "-1.7976931348623157e308" : "1.7976931348623157e308";
            copiedUpTo = end;
        }
        i = end;
    }
    if (copiedUpTo == 0) {
        return std::nullopt;
    }
    result.append(text.substr(copiedUpTo));
    return result;
}

}  // namespace tb
