#include "core/VendorIdentifier.h"

#include <array>
#include <cstdint>

#include "platform/RandomSource.h"
#include "platform/UserDefaults.h"

namespace tb {

namespace {

constexpr const char* kVendorIdentifierKey = "identifierForVendor";

// A version 4 UUID: 122 random bits, the version nibble 4 and the variant bits 10.
std::string randomUUID(RandomSource& random) {
    std::array<std::uint8_t, 16> bytes{};
    for (auto& byte : bytes) {
        byte = static_cast<std::uint8_t>(random.secureUniform(256));
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 0x0F];
    }
    return text;
}

}  // namespace

std::string vendorIdentifier(UserDefaults& defaults, RandomSource& random) {
    if (auto kept = defaults.stringForKey(kVendorIdentifierKey); kept && !kept->empty()) {
        return *kept;
    }
    std::string made = randomUUID(random);
    defaults.setString(kVendorIdentifierKey, made);
    return made;
}

}  // namespace tb
