#pragma once

#include <optional>
#include <string>

#include "api/AFXAuthRequestSerializer.h"
#include "platform/Clock.h"
#include "support/Recorders.h"

#include <gtest/gtest.h>

namespace tb::test {

// The signing vectors of the serializer tests were worked out apart from this code, by a
// short python3 script (hmac, hashlib, base64 and struct of the standard library) that
// follows the written algorithm step by step; its results are pasted as literals. They all
// use these values:
//   consumer key "tb-consumer key+1", consumer secret "cs/secret+&x",
//   token "tok/en~9" with secret "ts+secret", nonce 123456789,
//   wall clock 1700000070.25, which the serializers' single-precision timestamp turns into
//   1700000128.
inline const std::string kBase = "https://api.tunebrook.test/v1/";
inline const std::string kConsumerKey = "tb-consumer key+1";
inline const std::string kConsumerSecret = "cs/secret+&x";

// The values of an Authorization header besides its signature and token.
struct OAuthValues {
    std::string consumerKey = "tb-consumer%20key%2B1";
    std::string nonce = "123456789";
    std::string timestamp = "1700000128";
};

// The Authorization header a vector expects, with `token` as the header writes it (none
// when empty).
inline std::string oauthHeader(const std::string& signature,
                               const std::string& token = "",
                               const OAuthValues& values = {}) {
    return "OAuth oauth_consumer_key=\"" + values.consumerKey + "\", oauth_nonce=\"" +
           values.nonce + "\", oauth_signature=\"" + signature +
           "\", oauth_signature_method=\"HMAC-SHA1\", oauth_timestamp=\"" + values.timestamp +
           "\", " + (token.empty() ? "" : "oauth_token=\"" + token + "\", ") +
           "oauth_version=\"1.0\"";
}

class HeldToken final : public AFXAuthRequestSerializerTokenProvider {
  public:
    const std::optional<AFXAuthToken>& token() const override { return token_; }
    void set(std::optional<AFXAuthToken> token) { token_ = std::move(token); }

  private:
    std::optional<AFXAuthToken> token_;
};

template <typename Serializer>
class SerializerFixture : public ::testing::Test {
  protected:
    SerializerFixture() {
        random.script = {123456789};
        token.set(AFXAuthToken("tok/en~9", "ts+secret", 0));
        serializer.setTokenProvider(&token);
    }

    std::string authorizationOf(const std::optional<HttpRequest>& request) const {
        return request ? findHeader(request->headers, "Authorization").value_or("") : "";
    }

    ScriptedRandomSource random;
    ManualClock clock{1700000070.25};
    HeldToken token;
    Serializer serializer{kConsumerKey, kConsumerSecret, random, clock};
};

}  // namespace tb::test
