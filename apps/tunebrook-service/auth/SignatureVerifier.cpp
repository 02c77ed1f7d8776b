#include "tunebrook-service/auth/SignatureVerifier.h"

#include <algorithm>

#include "tunebrook-service/core/Crypto.h"
#include "tunebrook-service/core/PercentCodec.h"

namespace tb::service {

namespace {

// The serializers escape with a set that leaves letters, digits and "-._~" alone and forces
// every reserved character to be escaped; what remains is the same set the typed signer
// leaves, so both are this one function.
std::string encode(const std::string& text) {
    return PercentCodec::encodeUnreserved(text);
}

bool isSignedOAuthEntry(const std::string& key) {
    return key != "oauth_signature" && key != "realm";
}

std::string join(const std::vector<std::string>& parts, const std::string& separator) {
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            out += separator;
        }
        out += parts[i];
    }
    return out;
}

std::string headerValue(const SignatureInput& input, const std::string& key) {
    auto it = input.oauth.find(key);
    return it == input.oauth.end() ? std::string() : it->second;
}

}  // namespace

std::string SignatureVerifier::serializerBaseString(const SignatureInput& input) {
    std::vector<std::string> entries;
    for (const auto& [key, value] : input.oauth) {
        if (!isSignedOAuthEntry(key)) {
            continue;
        }
        // The serializers put the already escaped token into the header and escape the
        // header once more; undo the second escape to get the token they signed.
        std::string raw = value;
        if (key == "oauth_token") {
            raw = PercentCodec::decode(value).value_or(value);
        }
        entries.push_back(key + "%3D" + encode(raw));
    }
    auto addParams = [&](const std::vector<FormParam>& params) {
        for (const auto& param : params) {
            entries.push_back(param.name + "%3D" + encode(encode(param.value)));
        }
    };
    addParams(input.queryParams);
    addParams(input.bodyParams);
    std::sort(entries.begin(), entries.end());
    return input.method + "&" + encode(input.url) + "&" + join(entries, "%26");
}

std::string SignatureVerifier::serializerSignature(const SignatureInput& input) {
    std::string key = input.consumerSecret + "&" + input.tokenSecret;
    return Crypto::base64(Crypto::hmacSha1(key, serializerBaseString(input)));
}

std::string SignatureVerifier::signerBaseString(const SignatureInput& input) {
    std::map<std::string, std::string> signedParams;
    for (const auto& [key, value] : input.oauth) {
        if (isSignedOAuthEntry(key)) {
            signedParams[key] = value;
        }
    }
    // The signer reads the form body back when there is one, and the URL's query otherwise;
    // an item without a value takes its name out of the set.
    const auto& items = input.urlEncodedBody ? input.bodyParams : input.queryParams;
    for (const auto& item : items) {
        if (item.hasValue) {
            signedParams[item.name] = item.value;
        } else {
            signedParams.erase(item.name);
        }
    }
    std::vector<std::string> entries;
    for (const auto& [key, value] : signedParams) {
        entries.push_back(encode(key) + "=" + encode(value));
    }
    std::sort(entries.begin(), entries.end());
    return input.method + "&" + encode(input.url) + "&" + encode(join(entries, "&"));
}

std::string SignatureVerifier::signerSignature(const SignatureInput& input) {
    std::string key = encode(input.consumerSecret) + "&" + encode(input.tokenSecret);
    return Crypto::base64(Crypto::hmacSha1(key, signerBaseString(input)));
}

SignatureScheme SignatureVerifier::verify(const SignatureInput& input) {
    std::string given = headerValue(input, "oauth_signature");
    if (given.empty()) {
        return SignatureScheme::none;
    }
    if (Crypto::constantTimeEqual(given, serializerSignature(input))) {
        return SignatureScheme::serializer;
    }
    if (Crypto::constantTimeEqual(given, signerSignature(input))) {
        return SignatureScheme::signer;
    }
    return SignatureScheme::none;
}

}  // namespace tb::service
