#include <nlohmann/json.hpp>

#include "SerializerFixture.h"
#include "api/AFXAuthRequestSerializer.h"
#include "api/FormParameters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

using AFXAuthRequestSerializerTest = test::SerializerFixture<AFXAuthRequestSerializer>;

TEST_F(AFXAuthRequestSerializerTest, SignsAFormPostWithTheToken) {
    const auto parameters =
        nlohmann::json::parse(R"({"title": "Rock + Roll/Mix ~100% )"
                              "\xC3\xBC"
                              R"(", "genre": "hip-hop", "private": true, "count": 3})");
    const auto request =
        serializer.requestWithMethod("POST", test::kBase + "playlist/create", parameters);
    ASSERT_TRUE(request);

    EXPECT_EQ(request->body,
              "count=3&genre=hip-hop&private=1&title=Rock%20%2B%20Roll%2FMix%20~100%25%20%C3%BC");
    EXPECT_THAT(findHeader(request->headers, "Content-Type"),
                Optional(std::string("application/x-www-form-urlencoded; charset=utf-8")));
    EXPECT_EQ(serializer.baseStringWithRequest(*request, flattenFormParameters(parameters)),
              "POST&https%3A%2F%2Fapi.tunebrook.test%2Fv1%2Fplaylist%2Fcreate&count%3D3%26genre%"
              "3Dhip-hop%26oauth_consumer_key%3Dtb-consumer%20key%2B1%26oauth_nonce%3D123456789%"
              "26oauth_signature_method%3DHMAC-SHA1%26oauth_timestamp%3D1700000128%26oauth_token%"
              "3Dtok%2Fen~9%26oauth_version%3D1.0%26private%3D1%26title%3DRock%2520%252B%2520Roll%"
              "252FMix%2520~100%2525%2520%25C3%25BC");
    // The token appears encoded twice in the header, once in the base.
    EXPECT_EQ(authorizationOf(request),
              test::oauthHeader("25mRadEkOWze0ki%2FnNC5N7RGKgg%3D", "tok%252Fen~9"));
}

TEST_F(AFXAuthRequestSerializerTest, SignsAGetWithoutTokenFromItsQueryParameters) {
    token.set(std::nullopt);
    const auto parameters = nlohmann::json{{"page", "2"}, {"q", "a+b c"}};
    const auto request = serializer.requestWithMethod("GET", test::kBase + "search", parameters);
    ASSERT_TRUE(request);

    EXPECT_EQ(request->url, test::kBase + "search?page=2&q=a%2Bb%20c");
    EXPECT_EQ(request->body, "");
    // A plus sign is "%2B" after the first pass and "%252B" after the second.
    const std::string base =
        serializer.baseStringWithRequest(*request, flattenFormParameters(parameters));
    EXPECT_EQ(base,
              "GET&https%3A%2F%2Fapi.tunebrook.test%2Fv1%2Fsearch&oauth_consumer_key%3Dtb-"
              "consumer%20key%2B1%26oauth_nonce%3D123456789%26oauth_signature_method%3DHMAC-"
              "SHA1%26oauth_timestamp%3D1700000128%26oauth_version%3D1.0%26page%3D2%26q%3Da%"
              "252Bb%2520c");
    EXPECT_EQ(authorizationOf(request), test::oauthHeader("8N5lIf4gyzNH1XmOQTGrIbWTAP4%3D"));
}

TEST_F(AFXAuthRequestSerializerTest, LoginAndRegistrationCarryNoTokenEvenWhenOneIsHeld) {
    const nlohmann::json login = {{"x_auth_mode", "client_auth"},
                                  {"x_auth_password", "p@ss w0rd!"},
                                  {"x_auth_username", "me@example.com"}};
    const auto request = serializer.requestWithMethod("POST", test::kBase + "access_token", login);

    EXPECT_EQ(authorizationOf(request), test::oauthHeader("13%2BQKAUVZdPuM5k%2B3lw5FTnjqCk%3D"));

    for (const std::string& url : {test::kBase + "user/register", test::kBase + "access_token/"}) {
        EXPECT_THAT(authorizationOf(serializer.requestWithMethod("POST", url, login)),
                    Not(HasSubstr("oauth_token")))
            << url;
    }
    EXPECT_THAT(
        authorizationOf(serializer.requestWithMethod("POST", test::kBase + "access_tokens", login)),
        HasSubstr("oauth_token"));
}

TEST_F(AFXAuthRequestSerializerTest, AnEmptyTokenSecretLeavesTheKeyEndingInAmpersand) {
    token.set(AFXAuthToken("tok3n", "", 0));
    const auto request = serializer.requestWithMethod("GET", test::kBase + "user", nullptr);

    // HMAC key "cs/secret+&x&".
    EXPECT_EQ(authorizationOf(request),
              test::oauthHeader("hOIHOimai4HujXhQNw3%2BU4JJHWA%3D", "tok3n"));
}

TEST_F(AFXAuthRequestSerializerTest, NestedParametersAreSignedAsTheirFlattenedPairs) {
    const auto parameters =
        nlohmann::json::parse(R"({"entities": [{"kind": "song", "id": "42"}]})");
    const auto request =
        serializer.requestWithMethod("POST", test::kBase + "artist/me/pinned", parameters);
    ASSERT_TRUE(request);

    EXPECT_EQ(request->body, "entities[][id]=42&entities[][kind]=song");
    // Keys go into the base unencoded.
    EXPECT_THAT(serializer.baseStringWithRequest(*request, flattenFormParameters(parameters)),
                HasSubstr("&entities[][id]%3D42%26entities[][kind]%3Dsong%26oauth_consumer_key"));
    EXPECT_EQ(authorizationOf(request),
              test::oauthHeader("EaJKVcXx%2BHK9C9DbezWhj1GrwJM%3D", "tok%252Fen~9"));
}

TEST_F(AFXAuthRequestSerializerTest, EachRequestDrawsA31BitNonce) {
    random.script = {7, 0x7ffffffe};
    serializer.requestWithMethod("GET", test::kBase + "user", nullptr);
    EXPECT_EQ(serializer.nonce(), "7");
    serializer.requestWithMethod("GET", test::kBase + "user", nullptr);
    EXPECT_EQ(serializer.nonce(), "2147483646");
    EXPECT_THAT(random.upperBoundsAsked, ElementsAre(0x7fffffffu, 0x7fffffffu));
}

TEST_F(AFXAuthRequestSerializerTest, TheTimestampMovesIn128SecondSteps) {
    const std::pair<double, std::string> cases[] = {
        {1700000000.0, "1700000000"},  // a multiple of 128 stays
        {1700000063.9, "1700000000"},  // single precision rounds to the nearer step
        {1700000064.5, "1700000128"},
        {1700000127.0, "1700000128"},
    };
    for (const auto& [now, expected] : cases) {
        clock.setNow(now);
        serializer.requestWithMethod("GET", test::kBase + "user", nullptr);
        EXPECT_EQ(serializer.timestamp(), expected) << now;
    }
}

TEST_F(AFXAuthRequestSerializerTest, DeleteCarriesItsParametersInTheURL) {
    const auto request =
        serializer.requestWithMethod("DELETE", test::kBase + "playlist/9", {{"id", "9"}});

    EXPECT_EQ(request->url, test::kBase + "playlist/9?id=9");
    EXPECT_EQ(request->body, "");
}

TEST_F(AFXAuthRequestSerializerTest, RequestsCarryTheSerializerHeadersAndTimeOut) {
    serializer.setValueForHTTPHeaderField("1.2.3", "X-Application-Version");
    serializer.setTimeoutInterval(12.5);
    const auto request = serializer.requestWithMethod("GET", test::kBase + "user", nullptr);

    EXPECT_THAT(findHeader(request->headers, "X-Application-Version"),
                Optional(std::string("1.2.3")));
    EXPECT_EQ(request->timeoutSeconds, 12.5);
}

TEST_F(AFXAuthRequestSerializerTest, AnUnusableURLGivesABadURLError) {
    for (const std::string url : {"music/1", "https://api.tunebrook.test/a b", "https:///x",
                                  "https://api.tunebrook.test/%zz"}) {
        Error error;
        EXPECT_FALSE(serializer.requestWithMethod("GET", url, nullptr, &error)) << url;
        EXPECT_EQ(error.code, URLError::kBadURL) << url;
    }
}

}  // namespace
}  // namespace tb
