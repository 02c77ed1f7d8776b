#include "api/AFXAuthRequestSerializer.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <strings.h>

#include "api/XAuthEncoding.h"
#include "core/URLComponents.h"
#include "platform/Clock.h"
#include "platform/PercentEncoding.h"
#include "platform/RandomSource.h"
#include "platform/StringUtil.h"

namespace tb {

namespace {

constexpr const char* kSignatureMethod = "HMAC-SHA1";
constexpr const char* kVersion = "1.0";

std::string withoutQuery(const std::string& url) {
    return url.substr(0, url.find('?'));
}

std::string lastPathComponent(const std::string& url) {
    const auto parts = URLComponents::parse(url);
    if (!parts) {
        return {};
    }
    const auto slash = parts->path.rfind('/');
    return slash == std::string::npos ? parts->path : parts->path.substr(slash + 1);
}

}  // namespace

AFXAuthRequestSerializer::AFXAuthRequestSerializer(std::string consumerKey,
                                                   std::string consumerSecret,
                                                   RandomSource& random,
                                                   Clock& clock)
    : AFHTTPRequestSerializer(random),
      consumerKey_(std::move(consumerKey)),
      consumerSecret_(std::move(consumerSecret)),
      clock_(clock) {}

std::optional<HttpRequest> AFXAuthRequestSerializer::requestWithMethod(
    const std::string& method,
    const std::string& URLString,
    const nlohmann::json& parameters,
    Error* error) {
    drawNonceAndTimestamp();
    return withAuthorization(
        AFHTTPRequestSerializer::requestWithMethod(method, URLString, parameters, error),
        parametersToSign(method, parameters, false));
}

std::optional<HttpRequest> AFXAuthRequestSerializer::multipartFormRequestWithMethod(
    const std::string& method,
    const std::string& URLString,
    const nlohmann::json& parameters,
    const ConstructingBodyBlock& constructingBodyWithBlock,
    Error* error) {
    drawNonceAndTimestamp();
    return withAuthorization(AFHTTPRequestSerializer::multipartFormRequestWithMethod(
                                 method, URLString, parameters, constructingBodyWithBlock, error),
                             parametersToSign(method, parameters, true));
}

FormPairs AFXAuthRequestSerializer::parametersToSign(const std::string&,
                                                     const nlohmann::json& parameters,
                                                     bool) const {
    return flattenFormParameters(parameters);
}

// The nonce is 31 bits; the timestamp goes through single precision and is rounded up,
// which makes it move in steps of 128 seconds at today's times. The service expects it.
void AFXAuthRequestSerializer::drawNonceAndTimestamp() {
    nonce_ = std::to_string(static_cast<std::int32_t>(random_.uniform(0x7fffffff)));
    const float seconds = static_cast<float>(clock_.now());
    timestamp_ = std::to_string(static_cast<std::int64_t>(std::ceil(seconds)));
}

std::optional<HttpRequest> AFXAuthRequestSerializer::withAuthorization(
    std::optional<HttpRequest> request,
    const FormPairs& parameters) const {
    if (request) {
        setHeader(
            request->headers, "Authorization",
            authorizationHeaderForParameters(authorizationHeaderWithRequest(*request, parameters)));
    }
    return request;
}

std::optional<AFXAuthToken> AFXAuthRequestSerializer::tokenThatCounts(
    const HttpRequest& request) const {
    const std::string last = lastPathComponent(request.url);
    if (last == "access_token" || last == "register" || tokenProvider_ == nullptr) {
        return std::nullopt;
    }
    return tokenProvider_->token();
}

// Entries "key%3Dvalue", sorted as whole entries and joined by "%26": OAuth values are
// encoded once, request values twice, request keys not at all.
std::string AFXAuthRequestSerializer::baseStringWithRequest(const HttpRequest& request,
                                                            const FormPairs& parameters) const {
    std::vector<std::string> entries = {
        "oauth_consumer_key%3D" + percentEncodeForSigning(consumerKey_),
        "oauth_nonce%3D" + percentEncodeForSigning(nonce_),
        "oauth_signature_method%3D" + percentEncodeForSigning(kSignatureMethod),
        "oauth_timestamp%3D" + percentEncodeForSigning(timestamp_),
        "oauth_version%3D" + percentEncodeForSigning(kVersion),
    };
    for (const auto& pair : parameters) {
        entries.push_back(
            pair.key + "%3D" +
            percentEncodeForSigning(percentEncodeForSigning(pair.value.value_or(""))));
    }
    if (const auto token = tokenThatCounts(request)) {
        entries.push_back("oauth_token%3D" + percentEncodeForSigning(token->key()));
    }
    std::sort(entries.begin(), entries.end());
    return request.method + "&" + percentEncodeForSigning(withoutQuery(request.url)) + "&" +
           joined(entries, "%26");
}

std::map<std::string, std::string> AFXAuthRequestSerializer::authorizationHeaderWithRequest(
    const HttpRequest& request,
    const FormPairs& parameters) const {
    const auto token = tokenThatCounts(request);
    // The secrets go into the key raw, unlike the typed layer's signer.
    const std::string key = consumerSecret_ + "&" + (token ? token->secret() : "");
    std::map<std::string, std::string> header = {
        {"oauth_nonce", nonce_},
        {"oauth_signature_method", kSignatureMethod},
        {"oauth_timestamp", timestamp_},
        {"oauth_consumer_key", consumerKey_},
        {"oauth_signature", hmacSha1Base64(key, baseStringWithRequest(request, parameters))},
        {"oauth_version", kVersion},
    };
    if (token) {
        header["oauth_token"] = percentEncodeForSigning(token->key());
    }
    return header;
}

// `OAuth k1="v1", k2="v2"` with keys and values in the header encoding, in case-insensitive
// order of the "key=value" entries.
std::string AFXAuthRequestSerializer::authorizationHeaderForParameters(
    const std::map<std::string, std::string>& parameters) {
    std::vector<std::string> entries;
    for (const auto& [key, value] : parameters) {
        entries.push_back(percentEncodeFormKey(key) + "=" + percentEncodeFormKey(value));
    }
    std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        return ::strcasecmp(a.c_str(), b.c_str()) < 0;
    });
    std::vector<std::string> quoted;
    for (const auto& entry : entries) {
        const auto equals = entry.find('=');
        quoted.push_back(entry.substr(0, equals) + "=\"" + entry.substr(equals + 1) + "\"");
    }
    return "OAuth " + joined(quoted, ", ");
}

}  // namespace tb
