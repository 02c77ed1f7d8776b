#include "platform/Utf8.h"

#include <cstdint>

namespace tb {

namespace {

bool isContinuation(unsigned char c) {
    return (c & 0xC0) == 0x80;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const auto c = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        std::uint32_t point = 0;
        if (c < 0x80) {
            ++i;
            continue;
        } else if ((c & 0xE0) == 0xC0) {
            length = 2;
            point = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            length = 3;
            point = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            length = 4;
            point = c & 0x07;
        } else {
            return false;
        }
        if (i + length > text.size()) {
            return false;
        }
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if (!isContinuation(next)) {
                return false;
            }
            point = point << 6 | (next & 0x3F);
        }
        static constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (point < kSmallest[length] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) {
            return false;
        }
        i += length;
    }
    return true;
}

}  // namespace tb
