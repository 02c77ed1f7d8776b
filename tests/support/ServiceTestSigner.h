#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tb::test {

// Signs requests to the reference service in tests, written here from the two signing
// algorithms and sharing no code with the client or the service.
class ServiceTestSigner {
  public:
    using Params = std::vector<std::pair<std::string, std::string>>;

    ServiceTestSigner(std::string consumerKey, std::string consumerSecret)
        : consumerKey_(std::move(consumerKey)), consumerSecret_(std::move(consumerSecret)) {}

    void setToken(std::string token, std::string secret) {
        token_ = std::move(token);
        tokenSecret_ = std::move(secret);
    }
    void clearToken() { token_.clear(), tokenSecret_.clear(); }

    // The serializer scheme: values encoded twice, "%3D" in entries, raw secrets as key.
    std::string serializerHeader(const std::string& method,
                                 const std::string& url,
                                 const Params& params,
                                 const std::string& timestamp,
                                 const std::string& nonce) const;
    // The typed layer's scheme: values encoded once, encoded secrets as key.
    std::string signerHeader(const std::string& method,
                             const std::string& url,
                             const Params& params,
                             const std::string& timestamp,
                             const std::string& nonce) const;
    // The current time as the scheme writes it, and a fresh nonce.
    static std::string timestampNow();
    static std::string freshNonce();

    static std::string encode(const std::string& text);
    // "a=1&b=2" with both sides encoded.
    static std::string formEncode(const Params& params);

  private:
    std::string consumerKey_;
    std::string consumerSecret_;
    std::string token_;
    std::string tokenSecret_;
};

}  // namespace tb::test
