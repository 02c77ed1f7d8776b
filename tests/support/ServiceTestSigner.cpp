#include "support/ServiceTestSigner.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <map>
#include <random>

#include <openssl/evp.h>
#include <openssl/hmac.h>

namespace tb::test {

namespace {

std::string hmacSha1Base64(const std::string& key, const std::string& data) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(data.data()), data.size(), digest, &length);
    unsigned char out[64];
    int written = EVP_EncodeBlock(out, digest, static_cast<int>(length));
    return std::string(reinterpret_cast<char*>(out), static_cast<size_t>(written));
}

std::string join(const std::vector<std::string>& parts, const std::string& separator) {
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i) {
        out += (i ? separator : "") + parts[i];
    }
    return out;
}

std::string header(const std::map<std::string, std::string>& entries) {
    std::vector<std::string> parts;
    for (const auto& [key, value] : entries) {
        parts.push_back(key + "=\"" + ServiceTestSigner::encode(value) + "\"");
    }
    return "OAuth " + join(parts, ", ");
}

}  // namespace

std::string ServiceTestSigner::encode(const std::string& text) {
    static const char hex[] = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : text) {
        if (std::isalnum(c) && c < 0x80) {
            out.push_back(static_cast<char>(c));
        } else if (c == '-' || c == '.' || c == '_' || c == '~') {
            out.push_back(static_cast<char>(c));
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

std::string ServiceTestSigner::formEncode(const Params& params) {
    std::vector<std::string> parts;
    for (const auto& [key, value] : params) {
        parts.push_back(encode(key) + "=" + encode(value));
    }
    return join(parts, "&");
}

std::string ServiceTestSigner::serializerHeader(const std::string& method,
                                                const std::string& url,
                                                const Params& params,
                                                const std::string& timestamp,
                                                const std::string& nonce) const {
    std::vector<std::string> entries = {
        "oauth_consumer_key%3D" + encode(consumerKey_), "oauth_nonce%3D" + encode(nonce),
        "oauth_signature_method%3D" + encode("HMAC-SHA1"), "oauth_timestamp%3D" + encode(timestamp),
        "oauth_version%3D" + encode("1.0")};
    for (const auto& [key, value] : params) {
        entries.push_back(key + "%3D" + encode(encode(value)));
    }
    if (!token_.empty()) {
        entries.push_back("oauth_token%3D" + encode(token_));
    }
    std::sort(entries.begin(), entries.end());
    std::string base = method + "&" + encode(url) + "&" + join(entries, "%26");
    std::map<std::string, std::string> oauth = {
        {"oauth_consumer_key", consumerKey_},
        {"oauth_nonce", nonce},
        {"oauth_signature_method", "HMAC-SHA1"},
        {"oauth_timestamp", timestamp},
        {"oauth_version", "1.0"},
        {"oauth_signature", hmacSha1Base64(consumerSecret_ + "&" + tokenSecret_, base)}};
    if (!token_.empty()) {
        oauth["oauth_token"] = encode(token_);  // escaped once more by the header
    }
    return header(oauth);
}

std::string ServiceTestSigner::signerHeader(const std::string& method,
                                            const std::string& url,
                                            const Params& params,
                                            const std::string& timestamp,
                                            const std::string& nonce) const {
    std::map<std::string, std::string> oauth = {{"oauth_consumer_key", consumerKey_},
                                                {"oauth_nonce", nonce},
                                                {"oauth_signature_method", "HMAC-SHA1"},
                                                {"oauth_timestamp", timestamp},
                                                {"oauth_version", "1.0"}};
    if (!token_.empty()) {
        oauth["oauth_token"] = token_;
    }
    std::map<std::string, std::string> signedParams = oauth;
    for (const auto& [key, value] : params) {
        signedParams[key] = value;
    }
    std::vector<std::string> entries;
    for (const auto& [key, value] : signedParams) {
        entries.push_back(encode(key) + "=" + encode(value));
    }
    std::sort(entries.begin(), entries.end());
    std::string base = method + "&" + encode(url) + "&" + encode(join(entries, "&"));
    oauth["oauth_signature"] =
        hmacSha1Base64(encode(consumerSecret_) + "&" + encode(tokenSecret_), base);
    return header(oauth);
}

std::string ServiceTestSigner::timestampNow() {
    using namespace std::chrono;
    return std::to_string(duration_cast<seconds>(system_clock::now().time_since_epoch()).count());
}

std::string ServiceTestSigner::freshNonce() {
    static std::atomic<unsigned long> counter{0};
    static const unsigned long base = std::random_device{}();
    return std::to_string((base << 20) + ++counter);
}

}  // namespace tb::test
