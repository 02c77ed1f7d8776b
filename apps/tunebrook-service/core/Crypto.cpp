#include "tunebrook-service/core/Crypto.h"

#include <vector>

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

namespace tb::service {

namespace {

std::string hmac(const EVP_MD* md, std::string_view key, std::string_view data) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    HMAC(md, key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(data.data()), data.size(), digest, &length);
    return std::string(reinterpret_cast<const char*>(digest), length);
}

}  // namespace

std::string Crypto::hmacSha1(std::string_view key, std::string_view data) {
    return hmac(EVP_sha1(), key, data);
}

std::string Crypto::hmacSha256(std::string_view key, std::string_view data) {
    return hmac(EVP_sha256(), key, data);
}

std::string Crypto::pbkdf2Sha256(std::string_view password,
                                 std::string_view salt,
                                 int iterations,
                                 size_t length) {
    std::string out(length, '\0');
    PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()),
                      reinterpret_cast<const unsigned char*>(salt.data()),
                      static_cast<int>(salt.size()), iterations, EVP_sha256(),
                      static_cast<int>(length), reinterpret_cast<unsigned char*>(out.data()));
    return out;
}

std::string Crypto::base64(std::string_view raw) {
    std::vector<unsigned char> out(4 * ((raw.size() + 2) / 3) + 1);
    int written = EVP_EncodeBlock(out.data(), reinterpret_cast<const unsigned char*>(raw.data()),
                                  static_cast<int>(raw.size()));
    return std::string(reinterpret_cast<const char*>(out.data()), static_cast<size_t>(written));
}

std::optional<std::string> Crypto::base64Decode(std::string_view text) {
    static constexpr std::string_view kAlphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=') {
        ++padding;
    }
    std::string_view body = text.substr(0, text.size() - padding);
    if (body.find_first_not_of(kAlphabet) != std::string_view::npos) {
        return std::nullopt;
    }
    // EVP_DecodeBlock writes the padding as zero bytes; they are cut off again below.
    std::vector<unsigned char> out(3 * (text.size() / 4) + 1);
    int written = EVP_DecodeBlock(out.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                  static_cast<int>(text.size()));
    if (written < 0) {
        return std::nullopt;
    }
    return std::string(reinterpret_cast<const char*>(out.data()),
                       static_cast<size_t>(written) - padding);
}

std::string Crypto::hex(std::string_view raw) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(raw.size() * 2);
    for (unsigned char c : raw) {
        out.push_back(digits[c >> 4]);
        out.push_back(digits[c & 0x0f]);
    }
    return out;
}

std::string Crypto::randomBytes(size_t count) {
    std::string out(count, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char*>(out.data()), static_cast<int>(count)) != 1) {
        return {};
    }
    return out;
}

std::string Crypto::randomAlphanumeric(size_t count) {
    static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    constexpr unsigned kAlphabetSize = 62;
    // 248 is the largest multiple of 62 below 256: bytes above it are drawn again.
    constexpr unsigned kLimit = 248;
    std::string out;
    out.reserve(count);
    while (out.size() < count) {
        std::string bytes = randomBytes(count);
        if (bytes.empty()) {
            return {};
        }
        for (unsigned char b : bytes) {
            if (b < kLimit && out.size() < count) {
                out.push_back(alphabet[b % kAlphabetSize]);
            }
        }
    }
    return out;
}

bool Crypto::constantTimeEqual(std::string_view a, std::string_view b) {
    return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace tb::service
