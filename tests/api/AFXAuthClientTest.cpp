#include <limits>
#include <optional>
#include <string>
#include <tuple>

#include <nlohmann/json.hpp>

#include "api/AFXAuthClient.h"
#include "platform/ManualQueue.h"
#include "support/FakeHttpTransport.h"
#include "support/Recorders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;
using ::testing::Pair;
using ::testing::StartsWith;

const std::string kBase = "https://api.tunebrook.test/v1/";

// What a request's callbacks received.
struct Answer {
    bool succeeded = false;
    int failures = 0;
    nlohmann::json responseObject;
    std::optional<Error> error;
    int statusCode = -1;
    std::string responseString;
    bool cancelled = false;
};

class AFXAuthClientTest : public ::testing::Test {
  protected:
    AFXAuthClient makeClient(int type) {
        return AFXAuthClient(kBase, "consumer", "secret", type,
                             AFXAuthClient::Environment{http, queue, random, queue.clock(), "4.5.6",
                                                        [this] { ++offlineToasts; }});
    }

    AFHTTPRequestOperationManager::Success succeed(Answer& answer) {
        return [&answer](AFHTTPRequestOperation& operation, const nlohmann::json& object) {
            answer.succeeded = true;
            answer.responseObject = object;
            answer.statusCode = operation.statusCode();
        };
    }
    AFHTTPRequestOperationManager::Failure fail(Answer& answer) {
        return [&answer](AFHTTPRequestOperation& operation, const Error& error) {
            ++answer.failures;
            answer.error = error;
            answer.statusCode = operation.statusCode();
            answer.responseString = operation.responseString();
            answer.responseObject = operation.responseObject();
            answer.cancelled = operation.isCancelled();
        };
    }

    // GETs "music" and answers with the given status and body.
    Answer answerOf(int status, const std::string& body) {
        Answer answer;
        client.GET("music", nullptr, succeed(answer), fail(answer));
        http.respond(http.count() - 1, status, body);
        queue.runUntilIdle();
        return answer;
    }

    std::string authorization(std::size_t index) const {
        return findHeader(http.request(index).headers, "Authorization").value_or("");
    }

    ManualQueue queue;
    test::FakeHttpTransport http{queue};
    test::ScriptedRandomSource random;
    int offlineToasts = 0;
    AFXAuthClient client = makeClient(0);
};

TEST_F(AFXAuthClientTest, BuildsSignedRequestsOnTheBaseURL) {
    client.GET("chart/songs/week", {{"page", "2"}}, nullptr, nullptr);
    client.POST(kBase + "music/1/play", {{"section", "chart"}}, nullptr, nullptr);
    client.DELETE("/other/path", nullptr, nullptr, nullptr);

    EXPECT_EQ(http.request(0).url, kBase + "chart/songs/week?page=2");
    EXPECT_EQ(http.request(1).url, kBase + "music/1/play");
    EXPECT_EQ(http.request(1).body, "section=chart");
    EXPECT_EQ(http.request(2).url, "https://api.tunebrook.test/other/path");
    EXPECT_EQ(http.request(2).method, "DELETE");
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& headers = http.request(i).headers;
        EXPECT_THAT(findHeader(headers, "X-Application-Version"), Optional(std::string("4.5.6")));
        EXPECT_THAT(findHeader(headers, "X-Application-Platform"), Optional(std::string("ios")));
        EXPECT_THAT(authorization(i), StartsWith("OAuth oauth_consumer_key=\"consumer\""));
    }
}

// Type 1 sends signed JSON; any type but 0 and 1 leaves a plain unsigned form serializer.
TEST_F(AFXAuthClientTest, TheClientTypePicksTheSerializer) {
    const std::tuple<int, std::string, bool> cases[] = {{1, R"({"a":"1"})", true},
                                                        {7, "a=1", false}};
    for (const auto& [type, body, signs] : cases) {
        AFXAuthClient other = makeClient(type);
        other.POST("music", {{"a", "1"}}, nullptr, nullptr);
        const HttpRequest& sent = http.request(http.count() - 1);
        EXPECT_EQ(sent.body, body) << type;
        EXPECT_EQ(findHeader(sent.headers, "Authorization").has_value(), signs) << type;
        EXPECT_THAT(findHeader(sent.headers, "X-Application-Platform"),
                    Optional(std::string("ios")));
    }
}

TEST_F(AFXAuthClientTest, ATokenSetOnTheClientSignsItsRequests) {
    client.setToken("tok", "sec", 99);
    client.GET("user", nullptr, nullptr, nullptr);

    EXPECT_THAT(client.token(), Optional(AFXAuthToken("tok", "sec", 99)));
    EXPECT_THAT(authorization(0), HasSubstr("oauth_token=\"tok\""));
}

TEST_F(AFXAuthClientTest, A2xxJsonAnswerSucceeds) {
    const Answer object = answerOf(200, R"({"results": [1, 2]})");
    EXPECT_TRUE(object.succeeded);
    EXPECT_EQ(object.responseObject, nlohmann::json::parse(R"({"results": [1, 2]})"));

    const Answer fragment = answerOf(201, R"("done")");
    EXPECT_TRUE(fragment.succeeded);
    EXPECT_EQ(fragment.responseObject, "done");

    const Answer empty = answerOf(204, "");
    EXPECT_TRUE(empty.succeeded);
    EXPECT_TRUE(empty.responseObject.is_null());
}

TEST_F(AFXAuthClientTest, ABadStatusFailsWithTheResponseKept) {
    const Answer answer = answerOf(401, R"({"message": "Token expired"})");

    EXPECT_FALSE(answer.succeeded);
    EXPECT_EQ(answer.failures, 1);
    EXPECT_EQ(answer.error->code, URLError::kBadServerResponse);
    EXPECT_EQ(answer.statusCode, 401);
    EXPECT_EQ(answer.responseString, R"({"message": "Token expired"})");
    EXPECT_EQ(answer.responseObject["message"], "Token expired");
}

TEST_F(AFXAuthClientTest, ABodyThatIsNotJsonFailsAsUndecodable) {
    const Answer text = answerOf(200, "<html>oops</html>");
    EXPECT_EQ(text.error->code, URLError::kCannotDecodeContentData);
    EXPECT_EQ(text.statusCode, 200);
    EXPECT_EQ(text.responseString, "<html>oops</html>");

    const Answer deep = answerOf(200, std::string(5000, '[') + std::string(5000, ']'));
    EXPECT_EQ(deep.error->code, URLError::kCannotDecodeContentData);
}

TEST_F(AFXAuthClientTest, AnOverflowingNumberOrABadByteIsReadLenientlyNotRefused) {
    const Answer huge = answerOf(200, R"({"results": [{"duration": 1e400}, {"id": "2"}]})");
    ASSERT_TRUE(huge.succeeded);
    EXPECT_EQ(huge.responseObject["results"][0]["duration"], std::numeric_limits<double>::max());
    EXPECT_EQ(huge.responseObject["results"][1]["id"], "2");

    const Answer bytes = answerOf(200, "{\"title\": \"bad \xff\", \"id\": \"3\"}");
    ASSERT_TRUE(bytes.succeeded);
    EXPECT_EQ(bytes.responseObject["title"], "bad \xef\xbf\xbd");
    EXPECT_EQ(bytes.responseObject["id"], "3");

    // A failed answer stays readable the same way.
    const Answer refused = answerOf(500, "{\"message\": \"no \xc0\"}");
    EXPECT_EQ(refused.error->code, URLError::kBadServerResponse);
    EXPECT_EQ(refused.responseObject["message"], "no \xef\xbf\xbd");
}

TEST_F(AFXAuthClientTest, ATransportFailureFailsWithItsError) {
    Answer answer;
    client.GET("music", nullptr, succeed(answer), fail(answer));
    http.fail(0, URLError::kNotConnectedToInternet);
    queue.runUntilIdle();

    EXPECT_EQ(answer.error->code, URLError::kNotConnectedToInternet);
    EXPECT_EQ(answer.statusCode, 0);
    EXPECT_EQ(answer.responseString, "");
}

TEST_F(AFXAuthClientTest, AnswersArriveOnlyThroughTheMainQueue) {
    Answer answer;
    client.GET("music", nullptr, succeed(answer), fail(answer));
    client.GET("not a url", nullptr, succeed(answer), fail(answer));
    http.respond(0, 200, "{}");
    EXPECT_FALSE(answer.succeeded);
    EXPECT_EQ(answer.failures, 0);

    queue.runUntilIdle();
    EXPECT_TRUE(answer.succeeded);
    EXPECT_EQ(answer.failures, 1);
    EXPECT_EQ(answer.error->code, URLError::kBadURL);
    EXPECT_EQ(http.count(), 1u);
}

TEST_F(AFXAuthClientTest, ACancelledRequestFailsOnceAsCancelled) {
    Answer answer;
    auto operation = client.GET("music", nullptr, succeed(answer), fail(answer));
    operation->cancel();
    operation->cancel();
    queue.runUntilIdle();

    EXPECT_EQ(answer.failures, 1);
    EXPECT_TRUE(answer.cancelled);
    EXPECT_EQ(answer.error->code, URLError::kCancelled);
}

TEST_F(AFXAuthClientTest, RequestsTakeTheClientsTimeOut) {
    client.GET("a", nullptr, nullptr, nullptr);
    client.setCustomTimeout(10);
    client.GET("b", nullptr, nullptr, nullptr);
    client.resetTimeout();
    client.GET("c", nullptr, nullptr, nullptr);

    EXPECT_EQ(http.request(0).timeoutSeconds, 25.0);
    EXPECT_EQ(http.request(1).timeoutSeconds, 10.0);
    EXPECT_EQ(http.request(2).timeoutSeconds, 25.0);
}

TEST_F(AFXAuthClientTest, MethodsAreDispatchedByName) {
    for (const std::string method : {"GET", "HEAD", "POST", "PUT", "PATCH", "DELETE"}) {
        client.performMethod(method, "x", nullptr, nullptr, nullptr);
    }
    std::vector<std::string> methods;
    for (const auto& sent : http.sent()) {
        methods.push_back(sent->request.method);
    }
    EXPECT_THAT(methods, ElementsAre("GET", "HEAD", "POST", "PUT", "PATCH", "DELETE"));
    EXPECT_DEATH(client.performMethod("FETCH", "x", nullptr, nullptr, nullptr),
                 "FETCH:parameters:success:failure:");
}

TEST_F(AFXAuthClientTest, LoginSendsTheXAuthParametersWithoutToken) {
    client.setToken("old", "old-secret", 0);
    client.authorizeUsingXAuthWithAccessTokenPath("access_token", "POST", "me@example.com", "p@ss",
                                                  nullptr, nullptr);

    EXPECT_EQ(http.request(0).url, kBase + "access_token");
    EXPECT_THAT(test::parseFormBody(http.request(0).body),
                ElementsAre(Pair("x_auth_mode", "client_auth"), Pair("x_auth_password", "p@ss"),
                            Pair("x_auth_username", "me@example.com")));
    EXPECT_THAT(authorization(0), Not(HasSubstr("oauth_token")));
    EXPECT_EQ(client.username(), "me@example.com");
    EXPECT_EQ(client.password(), "p@ss");
}

TEST_F(AFXAuthClientTest, ASuccessfulLoginStoresTheTokenOfTheAnswer) {
    nlohmann::json received;
    client.authorizeUsingXAuthWithAccessTokenPath(
        "access_token", "POST", {{"g_token", "g"}},
        [&](const nlohmann::json& answer) { received = answer; }, nullptr, [] {});
    EXPECT_EQ(http.request(0).timeoutSeconds, 30.0);
    http.respond(
        0, 200,
        R"({"oauth_token": "new", "oauth_token_secret": "s", "oauth_token_expiration": 7})");
    queue.runUntilIdle();

    EXPECT_EQ(received["oauth_token"], "new");
    EXPECT_THAT(client.token(), Optional(AFXAuthToken("new", "s", 7)));
    client.GET("user", nullptr, nullptr, nullptr);
    EXPECT_EQ(http.request(1).timeoutSeconds, 25.0);
    EXPECT_THAT(authorization(1), HasSubstr("oauth_token=\"new\""));
}

TEST_F(AFXAuthClientTest, ALoginTimeOutWithATimeOutBlockCallsOnlyThatBlock) {
    int timeouts = 0;
    int failures = 0;
    client.authorizeUsingXAuthWithAccessTokenPath(
        "access_token", "POST", {{"x_auth_username", "me"}}, nullptr,
        [&](const nlohmann::json&, int) { ++failures; }, [&] { ++timeouts; });
    http.fail(0, URLError::kTimedOut);
    queue.runUntilIdle();

    EXPECT_EQ(timeouts, 1);
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(offlineToasts, 0);
    client.GET("user", nullptr, nullptr, nullptr);
    EXPECT_EQ(http.request(1).timeoutSeconds, 25.0);
}

TEST_F(AFXAuthClientTest, ALoginTimeOutWithoutATimeOutBlockShowsTheOfflineToastThenFails) {
    std::vector<int> statuses;
    client.authorizeUsingXAuthWithAccessTokenPath("access_token", "POST", "me", "pw", nullptr,
                                                  [&](const nlohmann::json& object, int status) {
                                                      EXPECT_TRUE(object.is_null());
                                                      EXPECT_EQ(offlineToasts, 1);
                                                      statuses.push_back(status);
                                                  });
    EXPECT_EQ(http.request(0).timeoutSeconds, 25.0);
    http.fail(0, URLError::kTimedOut);
    queue.runUntilIdle();

    EXPECT_THAT(statuses, ElementsAre(0));
}

TEST_F(AFXAuthClientTest, ARefusedLoginFailsWithTheAnswerAndStatus) {
    client.setToken("kept", "s", 0);
    nlohmann::json object;
    int status = 0;
    client.authorizeUsingXAuthWithAccessTokenPath(
        "access_token", "POST", {{"x_auth_username", "me"}}, nullptr,
        [&](const nlohmann::json& answer, int code) {
            object = answer;
            status = code;
        },
        [] {});
    http.respond(0, 401, R"({"errorcode": 1037, "message": "Wrong password"})");
    queue.runUntilIdle();

    EXPECT_EQ(status, 401);
    EXPECT_EQ(object["errorcode"], 1037);
    EXPECT_EQ(offlineToasts, 0);
    EXPECT_THAT(client.token(), Optional(AFXAuthToken("kept", "s", 0)));
}

TEST_F(AFXAuthClientTest, AnAnswerAfterTheClientIsGoneIsDropped) {
    bool called = false;
    {
        AFXAuthClient shortLived = makeClient(0);
        shortLived.authorizeUsingXAuthWithAccessTokenPath(
            "access_token", "POST", {{"x_auth_username", "me"}},
            [&](const nlohmann::json&) { called = true; }, nullptr, [] {});
    }
    http.respond(0, 200, R"({"oauth_token": "t"})");
    queue.runUntilIdle();

    EXPECT_FALSE(called);
}

}  // namespace
}  // namespace tb
