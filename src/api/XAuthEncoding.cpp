#include "api/XAuthEncoding.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include "platform/Base64.h"

namespace tb {

namespace {

bool isUnreserved(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

template <typename Keep>
std::string percentEscape(std::string_view text, Keep keep) {
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

}  // namespace

std::string signatureEscape(std::string_view text) {
    return percentEscape(text, isUnreserved);
}

std::string headerEscape(std::string_view text) {
    return percentEscape(text,
                         [](unsigned char c) { return isUnreserved(c) || c == '[' || c == ']'; });
}

std::string formValueEscape(std::string_view text) {
    return percentEscape(text, isUnreserved);
}

std::string strictEscape(std::string_view text) {
    return percentEscape(text, isUnreserved);
}

std::string hmacSha1Base64(std::string_view key, std::string_view text) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest, &length);
    return base64Encode(std::string_view(reinterpret_cast<const char*>(digest), length));
}

}  // namespace tb
