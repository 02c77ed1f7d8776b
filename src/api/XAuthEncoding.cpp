#include "api/XAuthEncoding.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include "platform/Base64.h"

namespace tb {

std::string hmacSha1Base64(std::string_view key, std::string_view text) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest, &length);
    return base64Encode(std::string_view(reinterpret_cast<const char*>(digest), length));
}

}  // namespace tb
