#include "tunebrook-service/core/PercentCodec.h"

namespace tb::service {

namespace {

bool isAsciiAlnum(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return -1;
}

// Undoes "%XX" escapes; a "+" becomes `plus`.
std::optional<std::string> decodeEscapes(std::string_view text, char plus) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out.push_back(text[i] == '+' ? plus : text[i]);
            continue;
        }
        if (i + 2 >= text.size()) {
            return std::nullopt;
        }
        int high = hexValue(text[i + 1]);
        int low = hexValue(text[i + 2]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        out.push_back(static_cast<char>(high * 16 + low));
        i += 2;
    }
    return out;
}

}  // namespace

std::string PercentCodec::encode(std::string_view text, std::string_view keep) {
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size() * 3);
    for (char ch : text) {
        auto c = static_cast<unsigned char>(ch);
        if (isAsciiAlnum(c) || (c < 0x80 && keep.find(ch) != std::string_view::npos)) {
            out.push_back(ch);
        } else {
            out.push_back('%');
            out.push_back(digits[c >> 4]);
            out.push_back(digits[c & 0x0f]);
        }
    }
    return out;
}

std::string PercentCodec::encodeUnreserved(std::string_view text) {
    return encode(text, "-._~");
}

std::optional<std::string> PercentCodec::decode(std::string_view text) {
    return decodeEscapes(text, '+');
}

std::optional<std::string> PercentCodec::decodeFormComponent(std::string_view text) {
    return decodeEscapes(text, ' ');
}

}  // namespace tb::service
