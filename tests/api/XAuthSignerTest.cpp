#include <cstdint>
#include <limits>

#include <nlohmann/json.hpp>

#include "SerializerFixture.h"
#include "api/FormParameters.h"
#include "api/XAuthSigner.h"
#include "platform/Clock.h"
#include "support/Recorders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;

// The vectors below were worked out apart from this code by the same python3 script as the
// serializers' (see SerializerFixture.h), following the signer's written steps. They use
// consumer key "ck+key", consumer secret "cs/secret", credentials "tok/en" / "ts+1",
// nonce 9223372036854775000 and wall clock 1700000070.25 (timestamp 1700000070).
const test::OAuthValues kSigner{"ck%2Bkey", "9223372036854775000", "1700000070"};
const test::OAuthValues kTogether{"key", "123456789", "1700000000"};

class XAuthSignerTest : public ::testing::Test {
  protected:
    XAuthSignerTest() {
        random.script = {9223372036854775000u};
        signer.setCredentials(XAuthSigner::Credentials{"tok/en", "ts+1"});
    }

    static HttpRequest request(const std::string& method,
                               const std::string& path,
                               const std::string& contentType = {},
                               const std::string& body = {}) {
        HttpRequest made;
        made.method = method;
        made.url = test::kBase + path;
        if (!contentType.empty()) {
            made.headers = {{"Content-Type", contentType}};
        }
        made.body = body;
        return made;
    }

    test::ScriptedRandomSource random;
    ManualClock clock{1700000070.25};
    XAuthSigner signer{{"ck+key", "cs/secret", "HMAC-SHA1", "1.0"}, random, clock};
};

TEST_F(XAuthSignerTest, SignsAFormBodyReadBackFromTheBody) {
    // The URL's own query is ignored when a form body is there; "flag" has no value and is
    // dropped; "+" in a body stays a plus sign.
    const auto post = request("POST", "user/profile?ignored=1",
                              "application/x-www-form-urlencoded; charset=utf-8",
                              "name=Rock%20%2B%20Roll&bio=a%2Fb~c%C3%BC&empty=&flag&name2=x+y");
    const auto oauth = signer.oauthParameters();

    EXPECT_EQ(signer.signatureBaseString(post, signer.signedParameters(post, oauth)),
              "POST&https%3A%2F%2Fapi.tunebrook.test%2Fv1%2Fuser%2Fprofile&bio%3Da%252Fb~c%"
              "25C3%25BC%26empty%3D%26name2%3Dx%252By%26name%3DRock%2520%252B%2520Roll%26oauth_"
              "consumer_key%3Dck%252Bkey%26oauth_nonce%3D9223372036854775000%26oauth_signature_"
              "method%3DHMAC-SHA1%26oauth_timestamp%3D1700000070%26oauth_token%3Dtok%252Fen%"
              "26oauth_version%3D1.0");
    EXPECT_EQ(signer.signatureKey(), "cs%2Fsecret&ts%2B1");

    random.script = {9223372036854775000u};
    EXPECT_EQ(signer.sign(post),
              test::oauthHeader("vTaCeJvnyPM%2Ff6naZlsf3WBTXqw%3D", "tok%2Fen", kSigner));
}

TEST_F(XAuthSignerTest, SignsTheURLQueryWithoutCredentials) {
    signer.setCredentials(std::nullopt);
    // An item without value removes even an OAuth parameter from what is signed; the header
    // still carries it.
    const auto get = request("GET", "onboarding-items?page=2&q=a%20b&oauth_version");

    EXPECT_EQ(signer.sign(get), test::oauthHeader("w6GH2LR0NZVOySfxcAFa04Bg6iM%3D", "", kSigner));
    EXPECT_EQ(signer.signatureKey(), "cs%2Fsecret&");
}

TEST_F(XAuthSignerTest, AJsonBodyIsNotSignedButTheURLQueryIs) {
    const auto post = request("POST", "user/profile?a=1", "application/json", R"({"name":"x"})");

    EXPECT_EQ(signer.sign(post),
              test::oauthHeader("Pl2MuaJc7QjAml04Wa%2FbHNMl3rM%3D", "tok%2Fen", kSigner));
}

TEST_F(XAuthSignerTest, ABodyThatIsNoValidQuerySignsNoBodyParameters) {
    const auto oauth = signer.oauthParameters();
    const auto post = request("POST", "user?x=1", "application/x-www-form-urlencoded", "a=b c");

    EXPECT_EQ(signer.signedParameters(post, oauth), oauth);
}

TEST_F(XAuthSignerTest, DrawsA63BitNonceAndATruncatedTimestamp) {
    clock.setNow(1700000099.99);
    const auto oauth = signer.oauthParameters();

    EXPECT_EQ(oauth.at("oauth_timestamp"), "1700000099");
    EXPECT_THAT(random.upperBoundsAsked,
                ElementsAre(static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())));
}

TEST(XAuthSignersTogetherTest, TheTwoSignersDifferOnTheSameRequest) {
    // Same nonce 123456789 and timestamp 1700000000 (a multiple of 128, so the serializer's
    // rounding leaves it), same keys, no token, the parameters {"a": "x", "a.b": "y~z"}.
    // "." and "~" are kept by both encodings, but the serializer sorts "a%3D..." before
    // "a.b%3D..." while the signer sorts "a.b=..." before "a=...".
    test::ScriptedRandomSource random;
    ManualClock clock{1700000000.0};
    AFXAuthRequestSerializer serializer{"key", "secret", random, clock};
    XAuthSigner signer{{"key", "secret", "HMAC-SHA1", "1.0"}, random, clock};

    random.script = {123456789};
    const auto request =
        serializer.requestWithMethod("GET", test::kBase + "search", {{"a", "x"}, {"a.b", "y~z"}});
    ASSERT_TRUE(request);
    ASSERT_EQ(request->url, test::kBase + "search?a=x&a.b=y~z");
    EXPECT_EQ(serializer.baseStringWithRequest(*request, {{"a", "x"}, {"a.b", "y~z"}}),
              "GET&https%3A%2F%2Fapi.tunebrook.test%2Fv1%2Fsearch&a%3Dx%26a.b%3Dy~z%26oauth_"
              "consumer_key%3Dkey%26oauth_nonce%3D123456789%26oauth_signature_method%3DHMAC-SHA1%"
              "26oauth_timestamp%3D1700000000%26oauth_version%3D1.0");
    EXPECT_EQ(findHeader(request->headers, "Authorization"),
              test::oauthHeader("81EtrR76KPJV%2BO%2FzPoQ%2FKgi4%2FpI%3D", "", kTogether));

    random.script = {123456789};
    const auto oauth = signer.oauthParameters();
    EXPECT_EQ(signer.signatureBaseString(*request, signer.signedParameters(*request, oauth)),
              "GET&https%3A%2F%2Fapi.tunebrook.test%2Fv1%2Fsearch&a.b%3Dy~z%26a%3Dx%26oauth_"
              "consumer_key%3Dkey%26oauth_nonce%3D123456789%26oauth_signature_method%3DHMAC-SHA1%"
              "26oauth_timestamp%3D1700000000%26oauth_version%3D1.0");
    random.script = {123456789};
    EXPECT_EQ(signer.sign(*request),
              test::oauthHeader("9%2FYBsgzdYL00%2BgGXvebyT44hXB4%3D", "", kTogether));
}

}  // namespace
}  // namespace tb
