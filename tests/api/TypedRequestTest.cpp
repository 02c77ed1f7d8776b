#include <nlohmann/json.hpp>

#include "api/API.h"
#include "api/APIBaseURLProvider.h"
#include "api/APIStatus.h"
#include "api/AlamofireNetworkLayer.h"
#include "api/TBJSONError.h"
#include "api/TBJSONRequest.h"
#include "api/TelcoDataRepository.h"
#include "platform/UserDefaults.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kLive = "https://api.tunebrook.test/v1/";
constexpr const char* kDev = "http://127.0.0.1:8081/v1/";

class TypedRequestTest : public ::testing::Test {
  protected:
    AlamofireNetworkLayer& layer() { return platform.context().networkLayer(); }

    std::optional<PromiseResult<TBJSONResponse>> send(const std::string& method,
                                                      const nlohmann::json& parameters,
                                                      bool isSigned = true) {
        auto& session =
            isSigned ? layer().signedSessionManager() : layer().unsignedSessionManager();
        auto promise =
            TBJSONRequest::send(session, platform.queue, method,
                                layer().baseURLProvider().baseURL() + "user/profile", parameters);
        platform.queue.runUntilIdle();
        return promise.result();
    }

    test::TestPlatform platform;
};

struct Answer {
    const char* name;
    int status;
    std::string body;
    std::int64_t transportError;  // 0: the answer arrives
    std::int64_t errorCode;       // 0: the promise fulfils
    bool jsonRead;
};

class TypedAnswerTest : public TypedRequestTest, public ::testing::WithParamInterface<Answer> {};

TEST_P(TypedAnswerTest, OnlyA2xxJsonAnswerFulfilsAndAFailureKeepsWhatCame) {
    const Answer& answer = GetParam();
    if (answer.transportError == 0) {
        platform.http.on("GET", "user/profile", answer.status, answer.body);
    }
    auto promise = TBJSONRequest::send(layer().signedSessionManager(), platform.queue, "GET",
                                       std::string(kLive) + "user/profile", {{"page", 2}});
    if (answer.transportError != 0) {
        platform.http.fail(0, answer.transportError);
    }
    platform.queue.runUntilIdle();
    const auto result = promise.result();
    ASSERT_TRUE(result);
    if (answer.errorCode == 0) {
        ASSERT_TRUE(result->isFulfilled());
        EXPECT_EQ(result->value->json.dump(), answer.body.empty() ? "null" : answer.body);
        EXPECT_EQ(result->value->response->statusCode, answer.status);
        return;
    }
    ASSERT_FALSE(result->isFulfilled());
    const auto error = TBJSONError::from(*result->error);
    ASSERT_TRUE(error) << result->error->domain;
    EXPECT_EQ(error->error.code, answer.errorCode);
    EXPECT_EQ(error->statusCode(), answer.transportError ? 0 : answer.status);
    EXPECT_EQ(error->json.has_value(), answer.jsonRead);
    if (answer.jsonRead) {
        EXPECT_EQ(error->json->dump(), answer.body);
    }
    EXPECT_EQ(error->request->url, std::string(kLive) + "user/profile?page=2");
}

INSTANTIATE_TEST_SUITE_P(
    Answers,
    TypedAnswerTest,
    ::testing::Values(Answer{"EmptyBodyIsNull", 200, "", 0, 0, true},
                      Answer{"NoContent", 204, "", 0, 0, true},
                      Answer{"JsonBody", 201, R"({"a":1})", 0, 0, true},
                      Answer{"BytesThatArentJson", 200, "\xff<html>", 0,
                             URLError::kCannotDecodeContentData, false},
                      Answer{"Unauthorized", 401, R"({"errorcode":1007,"message":"Token expired"})",
                             0, URLError::kBadServerResponse, true},
                      Answer{"ServerErrorPage", 503, "<html>busy</html>", 0,
                             URLError::kBadServerResponse, false},
                      Answer{"Offline", 0, "", URLError::kNotConnectedToInternet,
                             URLError::kNotConnectedToInternet, false}),
    [](const auto& param) { return std::string(param.param.name); });

TEST_F(TypedRequestTest, TheSignedSessionSendsAppHeadersTheListenersTokenAndAFormBody) {
    platform.http.on("PUT", "user/profile", 200, "{}");
    platform.context().api().setCredentialsWithToken("t0ken", "s3cret");
    send("PUT", {{"bio", "a b+c/d"}});
    send("PUT", {{"bio", "x"}}, false);
    platform.context().api().resetCredentials();
    send("PUT", {{"bio", "y"}});

    ASSERT_EQ(platform.http.count(), 3u);
    const HttpRequest& signedRequest = platform.http.request(0);
    EXPECT_EQ(signedRequest.body, "bio=a%20b%2Bc%2Fd");
    EXPECT_THAT(findHeader(signedRequest.headers, "Content-Type").value_or(""),
                StartsWith("application/x-www-form-urlencoded"));
    EXPECT_EQ(findHeader(signedRequest.headers, "X-Application-Platform"), "ios");
    EXPECT_EQ(findHeader(signedRequest.headers, "X-Application-Version"),
              platform.context().options().appVersion);
    EXPECT_EQ(signedRequest.timeoutSeconds, 30.0);
    EXPECT_THAT(findHeader(signedRequest.headers, "Authorization").value_or(""),
                HasSubstr("oauth_token=\"t0ken\""));

    EXPECT_FALSE(findHeader(platform.http.request(1).headers, "Authorization"));
    EXPECT_EQ(platform.http.request(1).timeoutSeconds, 30.0);
    EXPECT_THAT(findHeader(platform.http.request(2).headers, "Authorization").value_or(""),
                Not(HasSubstr("oauth_token")));
}

struct Environment {
    std::optional<std::string> liveEnvironment;
    const char* baseURL;
};

class TypedBaseURLTest : public TypedRequestTest,
                         public ::testing::WithParamInterface<Environment> {};

TEST_P(TypedBaseURLTest, TheLiveEnvironmentDefaultPicksTheHostAtEachRequest) {
    EXPECT_EQ(layer().baseURLProvider().baseURL(), kLive);
    if (GetParam().liveEnvironment) {
        platform.defaults.standard().setString("liveEnvironment", *GetParam().liveEnvironment);
    }
    EXPECT_EQ(layer().baseURLProvider().baseURL(), GetParam().baseURL);
}

INSTANTIATE_TEST_SUITE_P(Defaults,
                         TypedBaseURLTest,
                         ::testing::Values(Environment{std::nullopt, kLive},
                                           Environment{"1", kLive},
                                           Environment{"0", kDev},
                                           Environment{"", kDev},
                                           Environment{"yes", kDev}));

TEST(APIStatusTest, OnlyZeroOneAndTwoAreStatuses) {
    for (long long raw : {0, 1, 2}) {
        ASSERT_TRUE(apiStatusFromRaw(raw)) << raw;
        EXPECT_EQ(static_cast<long long>(*apiStatusFromRaw(raw)), raw);
    }
    for (long long refused : {-1LL, 3LL, 10LL, 1LL << 40}) {
        EXPECT_FALSE(apiStatusFromRaw(refused)) << refused;
    }
}

// A desktop has no carrier; "Wi-Fi" is any link the reachability calls so.
TEST(TelcoDataRepositoryTest, HasNoCarrierAndTakesWifiFromTheReachability) {
    test::TestPlatform platform;
    TelcoDataRepository telco(platform.context().reachabilityManager());
    EXPECT_FALSE(telco.carrierName());
    EXPECT_TRUE(telco.isWifi());
    platform.reachability.set(true, false);
    EXPECT_FALSE(telco.isWifi());
}

}  // namespace
}  // namespace tb
