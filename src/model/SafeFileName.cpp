#include "model/SafeFileName.h"

namespace tb {

namespace {

bool keptAsIs(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == '-';
}

}  // namespace

std::string safeFileName(std::string_view id) {
    if (id.empty()) {
        return "_";
    }
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string name;
    name.reserve(id.size());
    for (size_t i = 0; i < id.size(); ++i) {
        const auto c = static_cast<unsigned char>(id[i]);
        if (keptAsIs(c) && !(i == 0 && c == '.')) {
            name += static_cast<char>(c);
        } else {
            name += '%';
            name += kHex[c >> 4];
            name += kHex[c & 0x0F];
        }
    }
    return name;
}

}  // namespace tb
