#include <nlohmann/json.hpp>

#include "SerializerFixture.h"
#include "api/AFMultipartFormData.h"
#include "api/AFXAuthJSONRequestSerializer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::HasSubstr;
using ::testing::Optional;
using ::testing::StartsWith;

using AFXAuthJSONRequestSerializerTest = test::SerializerFixture<AFXAuthJSONRequestSerializer>;

const nlohmann::json kComment = {{"comment", "so good +1"}, {"thread", "abc"}};

TEST_F(AFXAuthJSONRequestSerializerTest, APostSendsJsonAndSignsNoBodyParameters) {
    const auto request =
        serializer.requestWithMethod("POST", test::kBase + "music/123/comments", kComment);
    ASSERT_TRUE(request);

    EXPECT_EQ(request->body, R"({"comment":"so good +1","thread":"abc"})");
    EXPECT_THAT(findHeader(request->headers, "Content-Type"),
                Optional(std::string("application/json")));
    EXPECT_EQ(
        serializer.baseStringWithRequest(*request, {}),
        "POST&https%3A%2F%2Fapi.tunebrook.test%2Fv1%2Fmusic%2F123%2Fcomments&oauth_"
        "consumer_key%3Dtb-consumer%20key%2B1%26oauth_nonce%3D123456789%26oauth_signature_"
        "method%3DHMAC-SHA1%26oauth_timestamp%3D1700000128%26oauth_token%3Dtok%2Fen~9%26oauth_"
        "version%3D1.0");
    EXPECT_EQ(authorizationOf(request),
              test::oauthHeader("L2s0pYbnRotG52XFPX%2F3JQ4PzVY%3D", "tok%252Fen~9"));
}

TEST_F(AFXAuthJSONRequestSerializerTest, AGetSignsItsQueryParameters) {
    const auto request =
        serializer.requestWithMethod("GET", test::kBase + "music/123/comments", kComment);
    ASSERT_TRUE(request);

    EXPECT_EQ(request->url, test::kBase + "music/123/comments?comment=so%20good%20%2B1&thread=abc");
    EXPECT_EQ(authorizationOf(request),
              test::oauthHeader("ZWwWYhHOOJNLvODRiMbkrIswzqc%3D", "tok%252Fen~9"));
}

TEST_F(AFXAuthJSONRequestSerializerTest, DeleteSendsItsParametersAsJson) {
    const auto request =
        serializer.requestWithMethod("DELETE", test::kBase + "comments/5", {{"id", "5"}});

    EXPECT_EQ(request->url, test::kBase + "comments/5");
    EXPECT_EQ(request->body, R"({"id":"5"})");
}

TEST_F(AFXAuthJSONRequestSerializerTest, AMultipartFormSignsItsParametersWhateverTheMethod) {
    random.script = {123456789, 0xA1, 0xB2};
    const auto request = serializer.multipartFormRequestWithMethod(
        "POST", test::kBase + "music/123/comments", kComment, [](AFMultipartFormData& form) {
            form.appendPartWithFileData("\x89PNG", "image", "cover.png", "image/png");
        });
    ASSERT_TRUE(request);

    EXPECT_THAT(findHeader(request->headers, "Content-Type"),
                Optional(std::string("multipart/form-data; boundary=Boundary+000000A1000000B2")));
    EXPECT_EQ(request->body,
              "--Boundary+000000A1000000B2\r\n"
              "Content-Disposition: form-data; name=\"comment\"\r\n\r\nso good +1\r\n"
              "--Boundary+000000A1000000B2\r\n"
              "Content-Disposition: form-data; name=\"thread\"\r\n\r\nabc\r\n"
              "--Boundary+000000A1000000B2\r\n"
              "Content-Disposition: form-data; name=\"image\"; filename=\"cover.png\"\r\n"
              "Content-Type: image/png\r\n\r\n\x89PNG\r\n"
              "--Boundary+000000A1000000B2--\r\n");
    EXPECT_EQ(authorizationOf(request),
              test::oauthHeader("kuYmACX0vlj2kZumf0bnRPRNOZE%3D", "tok%252Fen~9"));
}

}  // namespace
}  // namespace tb
