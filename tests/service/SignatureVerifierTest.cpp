#include "tunebrook-service/auth/AuthorizationHeader.h"
#include "tunebrook-service/auth/SignatureVerifier.h"

#include <gtest/gtest.h>

namespace tb::service {
namespace {

// The expected signatures below were worked out apart from this code, by a short Python
// script that follows the two algorithms with urllib.parse.quote(s, safe="-._~"), hmac and
// base64 over the same inputs.

// A request's fields with the Authorization entries the client writes.
SignatureInput request(const std::string& method,
                       const std::string& path,
                       const std::string& nonce,
                       const std::string& timestamp,
                       const std::string& token = "") {
    SignatureInput input;
    input.method = method;
    input.url = "http://127.0.0.1:8080/v1/" + path;
    input.oauth = {{"oauth_consumer_key", "ck-key"},
                   {"oauth_nonce", nonce},
                   {"oauth_signature_method", "HMAC-SHA1"},
                   {"oauth_timestamp", timestamp},
                   {"oauth_version", "1.0"}};
    if (!token.empty()) {
        input.oauth["oauth_token"] = token;
        input.tokenSecret = "t=sec ret";
    }
    input.consumerSecret = "c+s/ecret";
    return input;
}

SignatureInput searchWithToken() {
    SignatureInput input = request("GET", "search", "12345", "1700000128", "tok123");
    input.queryParams = {{"q", "Sade & Kofi+ \xc3\xa9"}, {"show", "music"}, {"page", "1"}};
    return input;
}

SignatureInput profileForm() {
    SignatureInput input =
        request("POST", "user/profile", "9223372036854775000", "1700000100", "tok123");
    input.bodyParams = {{"name", "Sade & Kofi+"}, {"bio", "a~b"}};
    input.urlEncodedBody = true;
    return input;
}

TEST(SignatureVerifierTest, SerializerSchemeMatchesTheWorkedExample) {
    SignatureInput input = searchWithToken();
    EXPECT_EQ(SignatureVerifier::serializerBaseString(input),
              "GET&http%3A%2F%2F127.0.0.1%3A8080%2Fv1%2Fsearch&oauth_consumer_key%3Dck-key%26"
              "oauth_nonce%3D12345%26oauth_signature_method%3DHMAC-SHA1%26oauth_timestamp%3D"
              "1700000128%26oauth_token%3Dtok123%26oauth_version%3D1.0%26page%3D1%26q%3DSade"
              "%2520%2526%2520Kofi%252B%2520%25C3%25A9%26show%3Dmusic");
    EXPECT_EQ(SignatureVerifier::serializerSignature(input), "FPb6l9nQbrVJmSUlo6De9o7QnFs=");
}

TEST(SignatureVerifierTest, SerializerLoginWithoutTokenKeysOnTheConsumerSecretAndAnAmpersand) {
    SignatureInput input = request("POST", "access_token", "777", "1700000128");
    input.bodyParams = {{"x_auth_mode", "client_auth"},
                        {"x_auth_username", "a@b.c"},
                        {"x_auth_password", "p@ss w+rd"}};
    input.urlEncodedBody = true;
    EXPECT_EQ(SignatureVerifier::serializerSignature(input), "iozuuD9TvUdcuXFQzpcBWvlaWCI=");
    input.oauth["oauth_signature"] = "iozuuD9TvUdcuXFQzpcBWvlaWCI=";
    EXPECT_EQ(SignatureVerifier::verify(input), SignatureScheme::serializer);
}

TEST(SignatureVerifierTest, SignerSchemeReadsTheFormBodyAndKeysOnEncodedSecrets) {
    SignatureInput input = profileForm();
    EXPECT_EQ(SignatureVerifier::signerSignature(input), "dyz7eoMyjIAObhTan/QCNQEeQ4I=");
    // The same request by the serializer differs only in the key, made of the raw secrets.
    EXPECT_EQ(SignatureVerifier::serializerSignature(input), "vkfDq18NIfqkGMiIGFvP1uJurG8=");

    SignatureInput query = request("GET", "onboarding-items", "42", "1700000100");
    query.queryParams = {{"genre", "rap"}};
    EXPECT_EQ(SignatureVerifier::signerSignature(query), "njtppH+qAKVC/4o+weDiXeY2zY8=");
}

TEST(SignatureVerifierTest, TheSchemesSortDifferentlyWhenOneNameStartsAnother) {
    // "tag%3D" sorts before "tag2%3D", but "tag2=" sorts before "tag=".
    SignatureInput input;
    input.method = "GET";
    input.url = "http://127.0.0.1:8080/v1/search";
    input.queryParams = {{"tag", "x"}, {"tag2", "y"}};
    input.oauth = {{"oauth_consumer_key", "ck"},
                   {"oauth_nonce", "1"},
                   {"oauth_signature_method", "HMAC-SHA1"},
                   {"oauth_timestamp", "1700000000"},
                   {"oauth_version", "1.0"}};
    input.consumerSecret = "plainsecret";
    EXPECT_EQ(SignatureVerifier::serializerSignature(input), "pgCPM2JASCusdXZvJaMXI9aI/ZQ=");
    EXPECT_EQ(SignatureVerifier::signerSignature(input), "Ewybu/LGD6+IgBv9++/YZXS70T8=");
}

TEST(SignatureVerifierTest,
     VerifyAcceptsEitherSchemeExactlyAndTheSignerDropsBareItemsAndAFormPostsQuery) {
    SignatureInput input = profileForm();
    input.oauth["oauth_signature"] = "dyz7eoMyjIAObhTan/QCNQEeQ4I=";
    EXPECT_EQ(SignatureVerifier::verify(input), SignatureScheme::signer);
    input.oauth["oauth_signature"] = "vkfDq18NIfqkGMiIGFvP1uJurG8=";
    EXPECT_EQ(SignatureVerifier::verify(input), SignatureScheme::serializer);

    SignatureInput changedValue = input;
    changedValue.bodyParams[1].value = "a~c";
    EXPECT_EQ(SignatureVerifier::verify(changedValue), SignatureScheme::none);
    SignatureInput otherSecret = input;
    otherSecret.tokenSecret = "t=sec ret2";
    EXPECT_EQ(SignatureVerifier::verify(otherSecret), SignatureScheme::none);
    SignatureInput otherUrl = input;
    otherUrl.url = "http://127.0.0.1:8081/v1/user/profile";
    EXPECT_EQ(SignatureVerifier::verify(otherUrl), SignatureScheme::none);
    SignatureInput noSignature = input;
    noSignature.oauth.erase("oauth_signature");
    EXPECT_EQ(SignatureVerifier::verify(noSignature), SignatureScheme::none);

    SignatureInput base = profileForm();
    SignatureInput withExtras = base;
    withExtras.bodyParams.push_back({"flag", "", false});
    withExtras.queryParams = {{"ignored", "1"}};
    EXPECT_EQ(SignatureVerifier::signerSignature(withExtras),
              SignatureVerifier::signerSignature(base));
    // The serializer signs everything it was given, query included.
    EXPECT_NE(SignatureVerifier::serializerSignature(withExtras),
              SignatureVerifier::serializerSignature(base));
}

TEST(AuthorizationHeaderTest, ReadsQuotedEncodedEntriesAndRefusesOtherSchemesRepeatsAndBrokenOnes) {
    auto entries = AuthorizationHeader::parse(
        "OAuth oauth_consumer_key=\"ck\", oauth_signature=\"a%2Bb%3D\", oauth_token=\"t%2525\"");
    ASSERT_TRUE(entries);
    EXPECT_EQ(entries->at("oauth_consumer_key"), "ck");
    EXPECT_EQ(entries->at("oauth_signature"), "a+b=");
    EXPECT_EQ(entries->at("oauth_token"), "t%25");

    for (const char* header : {"Basic abc", "OAuth ", "OAuth a=b", "OAuth a=\"1\", a=\"2\"",
                               "OAuth =\"1\"", "OAuth a=\"%zz\"", "OAuth a=\"1", ""}) {
        EXPECT_FALSE(AuthorizationHeader::parse(header)) << header;
    }
}

}  // namespace
}  // namespace tb::service
