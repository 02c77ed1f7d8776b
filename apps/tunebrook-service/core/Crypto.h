#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tb::service {

// The few primitives the service needs, over OpenSSL. Digests are raw bytes in a string.
class Crypto {
  public:
    static std::string hmacSha1(std::string_view key, std::string_view data);
    static std::string hmacSha256(std::string_view key, std::string_view data);
    static std::string pbkdf2Sha256(std::string_view password,
                                    std::string_view salt,
                                    int iterations,
                                    size_t length);
    // Standard alphabet with "=" padding.
    static std::string base64(std::string_view raw);
    // The reverse, for padded standard Base64 only; nothing for anything else.
    static std::optional<std::string> base64Decode(std::string_view text);
    static std::string hex(std::string_view raw);
    // From the system's secure source; aborts the call with an empty string on failure.
    static std::string randomBytes(size_t count);
    // Letters and digits only, drawn without bias.
    static std::string randomAlphanumeric(size_t count);
    static bool constantTimeEqual(std::string_view a, std::string_view b);
};

}  // namespace tb::service
