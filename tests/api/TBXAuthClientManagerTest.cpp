#include <nlohmann/json.hpp>

#include "api/TBXAuthClientManager.h"
#include "core/TBLocalization.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::HasSubstr;
using ::testing::Optional;

AppOptions withVersion(const std::string& version) {
    AppOptions options;
    options.appVersion = version;
    return options;
}

TEST(TBXAuthClientManagerTest, MakesBothClientsOnceFromTheKeysAndTheBaseURL) {
    test::TestPlatform platform(withVersion("9.8.7"));
    auto& manager = TBXAuthClientManager::sharedManager();

    EXPECT_EQ(&manager.client(), &manager.client());
    EXPECT_NE(&manager.client(), &manager.jsonClient());
    EXPECT_EQ(manager.client().baseURL(), "https://api.tunebrook.test/v1/");

    manager.client().POST("music/1/favorite", {{"a", "1"}}, nullptr, nullptr);
    manager.jsonClient().POST("music/1/comments", {{"a", "1"}}, nullptr, nullptr);
    const auto& form = platform.http.request(0);
    const auto& json = platform.http.request(1);
    EXPECT_EQ(form.url, "https://api.tunebrook.test/v1/music/1/favorite");
    EXPECT_EQ(form.body, "a=1");
    EXPECT_EQ(json.body, R"({"a":"1"})");
    EXPECT_THAT(findHeader(form.headers, "Authorization").value_or(""),
                HasSubstr("oauth_consumer_key=\"test-tunebrookConsumerKey\""));
    EXPECT_THAT(findHeader(json.headers, "X-Application-Version"), Optional(std::string("9.8.7")));
}

TEST(TBXAuthClientManagerTest, ALoginTimeOutWithoutBlockShowsTheOfflineToast) {
    test::TestPlatform platform;
    auto& client = TBXAuthClientManager::sharedManager().client();
    client.authorizeUsingXAuthWithAccessTokenPath("access_token", "POST", "me", "pw", nullptr,
                                                  nullptr);
    platform.http.fail(0, URLError::kTimedOut);
    platform.queue.runUntilIdle();

    ASSERT_EQ(platform.ui.toasts.size(), 1u);
    EXPECT_EQ(platform.ui.toasts[0].text, TBLocalization::localizedString("toast_offline"));
}

TEST(TBXAuthClientManagerTest, CanBeMadeOnGivenSettings) {
    test::TestPlatform platform;
    TBXAuthClientManager manager(
        AFXAuthClient::Environment{platform.http, platform.queue, platform.random,
                                   platform.queue.clock(), "1.0", nullptr},
        "http://127.0.0.1:8081/v1/", "key", "secret");
    manager.client().GET("user", nullptr, nullptr, nullptr);

    EXPECT_EQ(platform.http.request(0).url, "http://127.0.0.1:8081/v1/user");
    EXPECT_THAT(findHeader(platform.http.request(0).headers, "Authorization").value_or(""),
                HasSubstr("oauth_consumer_key=\"key\""));
}

}  // namespace
}  // namespace tb
