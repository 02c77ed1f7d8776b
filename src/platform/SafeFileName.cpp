#include "platform/SafeFileName.h"

#include <algorithm>

#include <openssl/sha.h>

#include "platform/PercentEncoding.h"

namespace tb {

namespace {

// Room for the longest name with its suffixes (".json", ".mp3", ".tmp-XXXXXX",
// ".corrupt-<time>") inside the 255 bytes a Linux file name may have.
constexpr std::size_t kMaxName = 160;

bool isPlainByte(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == '-';
}

bool isReserved(std::string_view name, const std::vector<std::string>& reserved) {
    return std::find(reserved.begin(), reserved.end(), name) != reserved.end();
}

bool isPlain(std::string_view name, const std::vector<std::string>& reserved) {
    return !name.empty() && name.size() <= kMaxName && name.front() != '.' &&
           !isReserved(name, reserved) && std::all_of(name.begin(), name.end(), [](char c) {
               return isPlainByte(static_cast<unsigned char>(c));
           });
}

std::string sha256Name(std::string_view name) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(reinterpret_cast<const unsigned char*>(name.data()), name.size(), digest);
    std::string text = "%sha256-";
    for (const unsigned char byte : digest) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

bool never(unsigned char) {
    return false;
}

}  // namespace

std::string safeFileName(std::string_view name, const std::vector<std::string>& reserved) {
    if (isPlain(name, reserved)) {
        return std::string(name);
    }
    if (name.empty()) {
        return "%";
    }
    // The first byte is escaped even when plain if it would leave a hidden file or a reserved
    // name; the rest only when not plain.
    const bool escapeFirst = name.front() == '.' || isReserved(name, reserved);
    std::string encoded = escapeFirst ? percentEncode(name.substr(0, 1), never)
                                      : percentEncode(name.substr(0, 1), isPlainByte);
    encoded += percentEncode(name.substr(1), isPlainByte);
    return encoded.size() <= kMaxName ? encoded : sha256Name(name);
}

}  // namespace tb
