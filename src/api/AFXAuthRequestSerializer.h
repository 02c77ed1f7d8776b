#pragma once

#include <map>
#include <optional>
#include <string>

#include "api/AFHTTPRequestSerializer.h"
#include "api/AFXAuthToken.h"
#include "api/FormParameters.h"

namespace tb {

class Clock;

// Whoever holds the token that signs a serializer's requests (the client that owns it).
class AFXAuthRequestSerializerTokenProvider {
  public:
    virtual ~AFXAuthRequestSerializerTokenProvider() = default;
    virtual const std::optional<AFXAuthToken>& token() const = 0;
};

// The form serializer of the older request path: builds the request as its base does, then
// signs it (OAuth 1.0 with HMAC-SHA1) and sets "Authorization".
//
// Its signature has quirks the service verifies, so they stay exactly as they are: the
// timestamp moves in 128-second steps, parameter values are encoded twice in the base, keys
// not at all, and requests to "access_token" and "register" carry no token.
class AFXAuthRequestSerializer : public AFHTTPRequestSerializer {
  public:
    AFXAuthRequestSerializer(std::string consumerKey,
                             std::string consumerSecret,
                             RandomSource& random,
                             Clock& clock);

    const std::string& consumerKey() const { return consumerKey_; }
    const std::string& consumerSecret() const { return consumerSecret_; }

    // Not owned; the provider outlives the serializer (the client owns both).
    AFXAuthRequestSerializerTokenProvider* tokenProvider() const { return tokenProvider_; }
    void setTokenProvider(AFXAuthRequestSerializerTokenProvider* provider) {
        tokenProvider_ = provider;
    }

    // Each draws a fresh nonce and timestamp, builds the request, then signs it.
    std::optional<HttpRequest> requestWithMethod(const std::string& method,
                                                 const std::string& URLString,
                                                 const nlohmann::json& parameters,
                                                 Error* error = nullptr) override;
    std::optional<HttpRequest> multipartFormRequestWithMethod(
        const std::string& method,
        const std::string& URLString,
        const nlohmann::json& parameters,
        const ConstructingBodyBlock& constructingBodyWithBlock,
        Error* error = nullptr) override;

    // The steps of the signature, with the nonce and timestamp of the last request built.
    std::string baseStringWithRequest(const HttpRequest& request,
                                      const FormPairs& parameters) const;
    std::map<std::string, std::string> authorizationHeaderWithRequest(
        const HttpRequest& request,
        const FormPairs& parameters) const;
    static std::string authorizationHeaderForParameters(
        const std::map<std::string, std::string>& parameters);

    const std::string& nonce() const { return nonce_; }
    const std::string& timestamp() const { return timestamp_; }

  protected:
    // The parameters the signature covers. The form serializer signs all it was given.
    virtual FormPairs parametersToSign(const std::string& method,
                                       const nlohmann::json& parameters,
                                       bool multipart) const;

  private:
    void drawNonceAndTimestamp();
    std::optional<HttpRequest> withAuthorization(std::optional<HttpRequest> request,
                                                 const FormPairs& parameters) const;
    // The provider's token, unless the request goes to "access_token" or "register".
    std::optional<AFXAuthToken> tokenThatCounts(const HttpRequest& request) const;

    std::string consumerKey_;
    std::string consumerSecret_;
    Clock& clock_;
    AFXAuthRequestSerializerTokenProvider* tokenProvider_ = nullptr;
    std::string nonce_;
    std::string timestamp_;
};

}  // namespace tb
