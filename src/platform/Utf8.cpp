#include "platform/Utf8.h"

namespace tb {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// The sequence that starts at `start`: how many bytes it spans and whether they make a
// character. An ill-formed sequence spans its maximal subpart: the lead byte and as many
// following bytes as could still belong to a well-formed sequence (at least one byte).
struct Sequence {
    std::size_t length;
    bool valid;
};

Sequence sequenceAt(std::string_view text, std::size_t start) {
    const auto lead = static_cast<unsigned char>(text[start]);
    if (lead < 0x80) {
        return {1, true};
    }
    std::size_t length = 0;
    // The range of the second byte narrows for some leads, which rules out overlong forms,
    // surrogates and points beyond U+10FFFF without decoding.
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return {1, false};  // a stray continuation byte, C0, C1 or F5 to FF
    }
    for (std::size_t k = 1; k < length; ++k) {
        if (start + k >= text.size()) {
            return {k, false};
        }
        const auto next = static_cast<unsigned char>(text[start + k]);
        if (next < low || next > high) {
            return {k, false};
        }
        low = 0x80;
        high = 0xBF;
    }
    return {length, true};
}

}  // namespace

bool isValidUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const Sequence sequence = sequenceAt(text, i);
        if (!sequence.valid) {
            return false;
        }
        i += sequence.length;
    }
    return true;
}

std::string repairedUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        const Sequence sequence = sequenceAt(text, i);
        if (sequence.valid) {
            result.append(text.substr(i, sequence.length));
        } else {
            result.append(kReplacement);
        }
        i += sequence.length;
    }
    return result;
}

}  // namespace tb
