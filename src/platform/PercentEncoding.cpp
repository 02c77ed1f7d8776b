#include "platform/PercentEncoding.h"

namespace tb {

namespace {

bool isFormKeyByte(unsigned char c) {
    return isUnreservedByte(c) || c == '[' || c == ']';
}

}  // namespace

bool isUnreservedByte(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

std::string percentEncode(std::string_view text, bool (*keep)(unsigned char)) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (keep(byte)) {
            escaped += c;
        } else {
            escaped += '%';
            escaped += kHex[byte >> 4];
            escaped += kHex[byte & 0x0F];
        }
    }
    return escaped;
}

std::string percentEncodeForSigning(std::string_view text) {
    return percentEncode(text, isUnreservedByte);
}

std::string percentEncodeFormKey(std::string_view text) {
    return percentEncode(text, isFormKeyByte);
}

std::string percentEncodeQueryValue(std::string_view text) {
    return percentEncode(text, isUnreservedByte);
}

std::string percentEncodePathSegment(std::string_view text) {
    if (text == ".") {
        return "%2E";
    }
    if (text == "..") {
        return "%2E%2E";
    }
    return percentEncode(text, isUnreservedByte);
}

}  // namespace tb
