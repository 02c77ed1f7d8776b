#include <fstream>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "api/AFXAuthJSONRequestSerializer.h"
#include "api/AFXAuthRequestSerializer.h"
#include "api/AFXAuthToken.h"
#include "api/XAuthSigner.h"
#include "platform/Clock.h"
#include "platform/HttpTransport.h"
#include "platform/linux/SystemRandomSource.h"
#include "support/ServiceProcess.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

// The client's own three signing paths against the service's verifier: whatever either side
// gets wrong about the signatures shows here as a 401.
class ServiceProcessClientSigningTest : public ::testing::Test,
                                        public AFXAuthRequestSerializerTokenProvider {
  protected:
    void SetUp() override {
        service_ =
            std::make_unique<ServiceProcess>(TB_SERVICE_BINARY, dir_.file("data"),
                                             std::vector<std::string>{"--media", "placeholder"});
        ASSERT_TRUE(service_->started()) << service_->error();
        form_ = std::make_unique<AFXAuthRequestSerializer>(
            service_->consumerKey(), service_->consumerSecret(), random_, clock_);
        json_ = std::make_unique<AFXAuthJSONRequestSerializer>(
            service_->consumerKey(), service_->consumerSecret(), random_, clock_);
        form_->setTokenProvider(this);
        json_->setTokenProvider(this);
        signer_ = std::make_unique<XAuthSigner>(
            XAuthSigner::Configuration{service_->consumerKey(), service_->consumerSecret(),
                                       "HMAC-SHA1", "1.0"},
            random_, clock_);
    }

    const std::optional<AFXAuthToken>& token() const override { return token_; }

    // Sends a request the client built, as it built it.
    httplib::Result send(const HttpRequest& request) {
        httplib::Client client(service_->host(), service_->port());
        client.set_url_encode(false);
        std::string origin = "http://" + service_->host() + ":" + std::to_string(service_->port());
        httplib::Request sent;
        sent.method = request.method;
        sent.path = request.url.substr(origin.size());
        sent.headers = httplib::Headers(request.headers.begin(), request.headers.end());
        sent.body = request.body;
        return client.send(sent);
    }

    void logIn() {
        std::ifstream file(dir_.file("data/demo-account.json"));
        auto demo = nlohmann::json::parse(file);
        auto request = form_->requestWithMethod("POST", service_->baseUrl() + "access_token",
                                                {{"x_auth_mode", "client_auth"},
                                                 {"x_auth_username", demo["email"]},
                                                 {"x_auth_password", demo["password"]},
                                                 {"os_type", "ios"}});
        ASSERT_TRUE(request);
        auto answer = send(*request);
        ASSERT_TRUE(answer);
        ASSERT_EQ(answer->status, 200) << answer->body;
        token_ = AFXAuthToken::initWithDict(nlohmann::json::parse(answer->body));
        signer_->setCredentials(XAuthSigner::Credentials{token_->key(), token_->secret()});
        slug_ = nlohmann::json::parse(answer->body)["user"]["url_slug"];
    }

    TempDir dir_;
    std::unique_ptr<ServiceProcess> service_;
    SystemRandomSource random_;
    SystemClock clock_;
    std::unique_ptr<AFXAuthRequestSerializer> form_;
    std::unique_ptr<AFXAuthJSONRequestSerializer> json_;
    std::unique_ptr<XAuthSigner> signer_;
    std::optional<AFXAuthToken> token_;
    std::string slug_;
};

TEST_F(ServiceProcessClientSigningTest, TheFormSerializerSignsCatalogueCallsAndTheLogin) {
    auto search = form_->requestWithMethod(
        "GET", service_->baseUrl() + "search",
        {{"q", "Sade & Kofi+ \xc3\xa9"}, {"show", "music"}, {"page", "1"}});
    ASSERT_TRUE(search);
    auto answer = send(*search);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200) << answer->body;

    logIn();
    auto user =
        form_->requestWithMethod("GET", service_->baseUrl() + "user", nlohmann::json::object());
    ASSERT_TRUE(user);
    EXPECT_EQ(send(*user)->status, 200);
    auto downloads = form_->requestWithMethod("POST", service_->baseUrl() + "user/downloads",
                                              {{"music_id", "10002,10003"}});
    EXPECT_EQ(send(*downloads)->status, 200);
    auto pinned =
        form_->requestWithMethod("POST", service_->baseUrl() + "artist/" + slug_ + "/pinned",
                                 {{"entities", R"([{"kind":"song","id":"10002"}])"}});
    auto pinnedAnswer = send(*pinned);
    EXPECT_NE(pinnedAnswer->status, 401) << pinnedAnswer->body;
}

TEST_F(ServiceProcessClientSigningTest, TheJsonSerializerSignsQueriesButNotBodies) {
    logIn();
    auto get = json_->requestWithMethod("GET", service_->baseUrl() + "user/downloads",
                                        {{"type", "all"}, {"limit", "50"}});
    EXPECT_EQ(send(*get)->status, 200);
    auto post = json_->requestWithMethod("PUT", service_->baseUrl() + "artist/" + slug_ + "/pinned",
                                         {{"entities", nlohmann::json::array()}});
    auto answer = send(*post);
    EXPECT_EQ(answer->status, 200) << answer->body;
}

TEST_F(ServiceProcessClientSigningTest, TheTypedLayersSignerSignsFormBodiesAndQueries) {
    logIn();
    HttpRequest request;
    request.method = "POST";
    request.url = service_->baseUrl() + "user/downloads";
    request.body = "music_id=10004%2C10005";
    setHeader(request.headers, "Content-Type", "application/x-www-form-urlencoded");
    setHeader(request.headers, "Authorization", signer_->sign(request));
    auto answer = send(request);
    EXPECT_EQ(answer->status, 200) << answer->body;

    HttpRequest get;
    get.url = service_->baseUrl() + "user/downloads?type=all&limit=10";
    setHeader(get.headers, "Authorization", signer_->sign(get));
    EXPECT_EQ(send(get)->status, 200);
}

}  // namespace
}  // namespace tb::test
