#include <nlohmann/json.hpp>

#include "api/AFXAuthToken.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::Optional;

TEST(AFXAuthTokenTest, ReadsTheLoginAnswer) {
    EXPECT_THAT(
        AFXAuthToken::initWithDict(nlohmann::json::parse(
            R"({"oauth_token": "k", "oauth_token_secret": "s", "oauth_token_expiration": 1893456000})")),
        Optional(AFXAuthToken("k", "s", 1893456000)));
    EXPECT_THAT(AFXAuthToken::initWithDict(nlohmann::json::parse(
                    R"({"oauth_token": "k", "oauth_token_expiration": "1893456000"})")),
                Optional(AFXAuthToken("k", "", 1893456000)));
}

TEST(AFXAuthTokenTest, NothingOrAnEmptyDictionaryGivesNoToken) {
    EXPECT_EQ(AFXAuthToken::initWithDict(nlohmann::json()), std::nullopt);
    EXPECT_EQ(AFXAuthToken::initWithDict(nlohmann::json::object()), std::nullopt);
    EXPECT_EQ(AFXAuthToken::initWithDict(nlohmann::json::array({1})), std::nullopt);
}

TEST(AFXAuthTokenTest, SurvivesArchiving) {
    const AFXAuthToken token("key/1", "secret+2", 4102444800);
    EXPECT_THAT(AFXAuthToken::initWithCoder(token.encodeWithCoder()), Optional(token));
    EXPECT_EQ(AFXAuthToken::initWithCoder("not an archive"), std::nullopt);
}

}  // namespace
}  // namespace tb
