#include "platform/Base64.h"

#include <array>
#include <cstdint>

namespace tb {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> makeDecodeTable() {
    std::array<std::int8_t, 256> table{};
    for (auto& entry : table) {
        entry = -1;
    }
    for (int i = 0; i < 64; ++i) {
        table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
    }
    return table;
}

constexpr std::array<std::int8_t, 256> kDecode = makeDecodeTable();

}  // namespace

std::string base64Encode(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3) {
        const std::uint32_t group = static_cast<unsigned char>(bytes[i]) << 16 |
                                    static_cast<unsigned char>(bytes[i + 1]) << 8 |
                                    static_cast<unsigned char>(bytes[i + 2]);
        text += kAlphabet[group >> 18 & 63];
        text += kAlphabet[group >> 12 & 63];
        text += kAlphabet[group >> 6 & 63];
        text += kAlphabet[group & 63];
    }
    const std::size_t rest = bytes.size() - i;
    if (rest > 0) {
        std::uint32_t group = static_cast<unsigned char>(bytes[i]) << 16;
        if (rest == 2) {
            group |= static_cast<unsigned char>(bytes[i + 1]) << 8;
        }
        text += kAlphabet[group >> 18 & 63];
        text += kAlphabet[group >> 12 & 63];
        text += rest == 2 ? kAlphabet[group >> 6 & 63] : '=';
        text += '=';
    }
    return text;
}

std::optional<std::string> base64Decode(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const bool last = i + 4 == text.size();
        const int padding = last ? (text[i + 3] == '=') + (text[i + 2] == '=') : 0;
        if (padding == 1 && text[i + 2] == '=') {
            return std::nullopt;  // "x=y=" style
        }
        std::uint32_t group = 0;
        for (int k = 0; k < 4 - padding; ++k) {
            const std::int8_t value = kDecode[static_cast<unsigned char>(text[i + k])];
            if (value < 0) {
                return std::nullopt;
            }
            group |= static_cast<std::uint32_t>(value) << (18 - 6 * k);
        }
        // Bits below the last whole byte must be zero, or two texts would decode alike.
        if ((padding == 1 && (group & 0xFF) != 0) || (padding == 2 && (group & 0xFFFF) != 0)) {
            return std::nullopt;
        }
        bytes += static_cast<char>(group >> 16 & 0xFF);
        if (padding < 2) {
            bytes += static_cast<char>(group >> 8 & 0xFF);
        }
        if (padding < 1) {
            bytes += static_cast<char>(group & 0xFF);
        }
    }
    return bytes;
}

}  // namespace tb
