#include "tunebrook-service/auth/RequestAuthenticator.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "tunebrook-service/auth/AuthorizationHeader.h"
#include "tunebrook-service/auth/NonceCache.h"
#include "tunebrook-service/core/Crypto.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/state/TokenStore.h"

namespace tb::service {

namespace {

AuthOutcome refuse(int code, std::string message) {
    AuthOutcome outcome;
    outcome.errorCode = code;
    outcome.message = std::move(message);
    return outcome;
}

std::string value(const std::map<std::string, std::string>& entries, const std::string& key) {
    auto it = entries.find(key);
    return it == entries.end() ? std::string() : it->second;
}

bool digitsOnly(const std::string& text, size_t maxLength) {
    return !text.empty() && text.size() <= maxLength &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); });
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

AuthOutcome RequestAuthenticator::authenticate(const AuthRequest& request, double now) {
    if (request.authorization.empty()) {
        return refuse(kMissingAuthorization, "Missing OAuth authorization");
    }
    auto oauth = AuthorizationHeader::parse(request.authorization);
    if (!oauth) {
        return refuse(kMalformedAuthorization, "Malformed OAuth authorization");
    }
    if (!Crypto::constantTimeEqual(value(*oauth, "oauth_consumer_key"), consumerKey_)) {
        return refuse(kUnknownConsumer, "Invalid consumer key");
    }
    if (value(*oauth, "oauth_signature_method") != "HMAC-SHA1" ||
        (oauth->count("oauth_version") && value(*oauth, "oauth_version") != "1.0")) {
        return refuse(kMalformedAuthorization, "Unsupported signature method");
    }
    std::string timestamp = value(*oauth, "oauth_timestamp");
    std::string nonce = value(*oauth, "oauth_nonce");
    if (!digitsOnly(timestamp, 12) || nonce.empty() || nonce.size() > 64) {
        return refuse(kMalformedAuthorization, "Missing timestamp or nonce");
    }
    int64_t stamp = std::stoll(timestamp);
    if (std::llabs(stamp - static_cast<int64_t>(std::floor(now))) > window_) {
        return refuse(kExpiredTimestamp, "Invalid signature: expired timestamp");
    }

    SignatureInput input;
    input.method = request.method;
    input.url = "http://" + lowerCase(request.host) + request.rawPath;
    input.queryParams = request.queryParams;
    input.bodyParams = request.bodyParams;
    input.urlEncodedBody = request.urlEncodedBody;
    input.oauth = *oauth;
    input.consumerSecret = consumerSecret_;

    AuthOutcome outcome;
    std::string token = value(*oauth, "oauth_token");
    if (oauth->count("oauth_token")) {
        // Tokens are letters and digits: the value reads the same under either scheme's
        // escaping, so one lookup serves both.
        auto record = tokens_.find(token);
        if (!record) {
            return refuse(kInvalidToken, "Invalid token");
        }
        if (record->expires <= now) {
            return refuse(kExpiredToken, "Token expired");
        }
        input.tokenSecret = record->secret;
        outcome.accountId = record->accountId;
    }
    outcome.scheme = SignatureVerifier::verify(input);
    if (outcome.scheme == SignatureScheme::none) {
        return refuse(kInvalidSignature, "Invalid signature");
    }
    if (!nonces_.remember(consumerKey_ + "&" + token + "&" + timestamp + "&" + nonce, stamp,
                          static_cast<int64_t>(now))) {
        return refuse(kNonceReused, "Nonce already used");
    }
    outcome.ok = true;
    outcome.status = 200;
    return outcome;
}

}  // namespace tb::service
