#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tunebrook-service/auth/SignatureVerifier.h"
#include "tunebrook-service/http/FormParams.h"

namespace tb::service {

class NonceCache;
class TokenStore;

// The parts of a request that its signature covers, as they arrived.
struct AuthRequest {
    std::string method;
    std::string host;     // the Host header
    std::string rawPath;  // as sent, without the query
    std::vector<FormParam> queryParams;
    std::vector<FormParam> bodyParams;
    bool urlEncodedBody = false;
    std::string authorization;
};

struct AuthOutcome {
    bool ok = false;
    int status = 401;
    int errorCode = 0;
    std::string message;
    std::optional<int64_t> accountId;
    SignatureScheme scheme = SignatureScheme::none;
};

// Accepts a request only when it carries our consumer key, a timestamp within the window,
// a nonce not seen before, a known and unexpired token if it names one, and a signature that
// one of the two signing schemes reproduces exactly.
class RequestAuthenticator {
  public:
    RequestAuthenticator(std::string consumerKey,
                         std::string consumerSecret,
                         TokenStore& tokens,
                         NonceCache& nonces,
                         int64_t windowSeconds)
        : consumerKey_(std::move(consumerKey)),
          consumerSecret_(std::move(consumerSecret)),
          tokens_(tokens),
          nonces_(nonces),
          window_(windowSeconds) {}

    AuthOutcome authenticate(const AuthRequest& request, double now);

  private:
    std::string consumerKey_;
    std::string consumerSecret_;
    TokenStore& tokens_;
    NonceCache& nonces_;
    int64_t window_;
};

}  // namespace tb::service
