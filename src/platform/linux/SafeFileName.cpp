#include "platform/linux/SafeFileName.h"

#include <algorithm>

#include <openssl/sha.h>

namespace tb {

namespace {

// Room for the longest stem with its suffixes (".json", ".tmp-XXXXXX", ".corrupt-<time>")
// inside the 255 bytes a Linux file name may have.
constexpr std::size_t kMaxStem = 160;

bool isPlainByte(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == '-';
}

bool isPlain(std::string_view name, const std::vector<std::string>& reserved) {
    if (name.empty() || name.size() > kMaxStem || name.front() == '.') {
        return false;
    }
    if (std::find(reserved.begin(), reserved.end(), name) != reserved.end()) {
        return false;
    }
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return isPlainByte(static_cast<unsigned char>(c)); });
}

std::string hexOf(const unsigned char* bytes, std::size_t size) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

}  // namespace

std::string safeFileStem(std::string_view name, const std::vector<std::string>& reserved) {
    if (isPlain(name, reserved)) {
        return std::string(name);
    }
    std::string stem = "%";
    for (char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        // A leading '.' is escaped too, so that no stem is a hidden file.
        if (isPlainByte(byte) && !(byte == '.' && stem.size() == 1)) {
            stem += c;
        } else {
            stem += '%';
            stem += hexOf(&byte, 1);
        }
    }
    if (stem.size() <= kMaxStem) {
        return stem;
    }
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(reinterpret_cast<const unsigned char*>(name.data()), name.size(), digest);
    return "%sha256-" + hexOf(digest, sizeof digest);
}

}  // namespace tb
