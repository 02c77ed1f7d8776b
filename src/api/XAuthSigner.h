#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/HttpTransport.h"

namespace tb {

class Clock;
class RandomSource;

// The typed layer's OAuth 1.0 signer. It differs from the serializers' signature on purpose
// (the service verifies each as it is): exact truncated timestamps, 63-bit nonces, encoded
// secrets in the HMAC key, no path exceptions, and form parameters read back from the body.
class XAuthSigner {
  public:
    struct Configuration {
        std::string consumerKey;
        std::string consumerSecret;
        std::string signatureMethod;
        std::string authVersion;
    };
    struct Credentials {
        std::string token;
        std::string secret;
    };
    using Parameters = std::map<std::string, std::string>;

    XAuthSigner(Configuration configuration, RandomSource& random, Clock& clock);

    const Configuration& configuration() const { return configuration_; }
    const std::optional<Credentials>& credentials() const { return credentials_; }
    void setCredentials(std::optional<Credentials> credentials) {
        credentials_ = std::move(credentials);
    }

    // The value of the "Authorization" header for `request`, with a fresh nonce and
    // timestamp. Never fails: missing parts read as empty text.
    std::string sign(const HttpRequest& request) const;

    // The steps of sign(), for given OAuth parameters (consumer key, signature method,
    // timestamp, nonce, version and the token when there are credentials).
    Parameters oauthParameters() const;
    Parameters signedParameters(const HttpRequest& request,
                                const Parameters& oauthParameters) const;
    std::string signatureBaseString(const HttpRequest& request,
                                    const Parameters& signedParameters) const;
    std::string signatureKey() const;
    static std::string authorizationHeader(const Parameters& oauthParameters);

  private:
    Configuration configuration_;
    std::optional<Credentials> credentials_;
    RandomSource& random_;
    Clock& clock_;
};

}  // namespace tb
