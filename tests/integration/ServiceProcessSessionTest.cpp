#include <chrono>
#include <fstream>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "accounts/TBCredentials.h"
#include "accounts/TBUserManager.h"
#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "core/TBLocalization.h"
#include "model/Artist.h"
#include "platform/JSON.h"
#include "support/ServiceProcess.h"
#include "support/TempDir.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

using json = nlohmann::json;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The session on virtual time against the real service: every request the app sends is
// handed to the service as it was built and signed, and its answer comes back through the
// main queue.
class ServiceProcessSessionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        service_ =
            std::make_unique<ServiceProcess>(TB_SERVICE_BINARY, dir_.file("data"),
                                             std::vector<std::string>{"--media", "placeholder"});
        ASSERT_TRUE(service_->started()) << service_->error();
        AppOptions options;
        options.keysFile = dir_.file("data/keys.json");
        platform_ = std::make_unique<TestPlatform>(options);
        platform_->queue.clock().setNow(
            std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
                .count());
        // The service refuses a nonce it has seen: every signature needs a new one.
        for (std::uint64_t nonce = 1; nonce <= 10000; ++nonce) {
            platform_->random.script.push_back(nonce);
        }
        platform_->http.on([](const HttpRequest&) { return true; },
                           [this](const HttpRequest& request) { return forward(request); });
        TBDataManager::useProd();
        platform_->context().dataManager().startup();
        std::ifstream file(dir_.file("data/demo-account.json"));
        demo_ = json::parse(file);
    }

    HttpResult forward(const HttpRequest& request) {
        httplib::Client client(service_->host(), service_->port());
        client.set_url_encode(false);
        const std::string origin =
            "http://" + service_->host() + ":" + std::to_string(service_->port());
        httplib::Request sent;
        sent.method = request.method;
        sent.path = request.url.substr(origin.size());
        sent.headers = httplib::Headers(request.headers.begin(), request.headers.end());
        sent.body = request.body;
        HttpResult result;
        auto answer = client.send(sent);
        if (!answer) {
            result.error = Error{URLError::kDomain, URLError::kCannotConnectToHost, "", {}};
            return result;
        }
        result.response = HttpResponse{answer->status,
                                       HttpHeaders(answer->headers.begin(), answer->headers.end()),
                                       answer->body, request.url};
        return result;
    }

    json admin(const std::string& method, const std::string& path, const json& body = {}) {
        httplib::Client client(service_->host(), service_->port());
        auto answer = method == "GET"      ? client.Get(path)
                      : method == "DELETE" ? client.Delete(path)
                                           : client.Post(path, body.dump(), "application/json");
        EXPECT_TRUE(answer && answer->status == 200) << method << " " << path;
        return answer ? json::parse(answer->body, nullptr, false) : json();
    }
    std::size_t logins() { return admin("GET", "/admin/report?kind=login")["events"].size(); }

    TBCredentials& credentials() { return platform_->context().credentials(); }
    TBUserManager& users() { return platform_->context().userManager(); }

    void signIn() {
        bool signedIn = false;
        users().loginWithEmail(
            demo_["email"], demo_["password"], false, [&] { signedIn = true; },
            [](int status, const std::string& message, const TBLoginExtra&) {
                ADD_FAILURE() << status << " " << message;
            },
            [] { ADD_FAILURE() << "timed out"; });
        platform_->queue.runUntilIdle();
        ASSERT_TRUE(signedIn);
        // The login asked for the listener's record, with the new token.
        ASSERT_NE(credentials().savedArtist(), nullptr);
        EXPECT_EQ(credentials().savedArtist()->urlSlug, credentials().userSlug());
        admin("DELETE", "/admin/report");
    }

    TempDir dir_;
    std::unique_ptr<ServiceProcess> service_;
    std::unique_ptr<TestPlatform> platform_;
    json demo_;
};

TEST_F(ServiceProcessSessionTest, AnExpiredTokenGivesOneFreshLoginAndOneRepeat) {
    signIn();
    EXPECT_EQ(credentials().userEmail(), demo_["email"]);
    admin("POST", "/admin/tokens/expire", json::object());

    int pages = 0;
    platform_->context().dataManager().getDownloads(
        "all", std::nullopt,
        [&](const std::vector<ItemPtr>&, const std::optional<std::string>&, const JSON&) {
            ++pages;
        },
        [](const TBFailureInfo& info) { ADD_FAILURE() << info.statusCode; });
    platform_->queue.runUntilIdle();
    EXPECT_EQ(pages, 1);
    EXPECT_EQ(logins(), 1u);

    admin("POST", "/admin/tokens/expire", json::object());
    int records = 0;
    users().getUserData([&](const JSON&) { ++records; }, nullptr);
    platform_->queue.runUntilIdle();
    EXPECT_EQ(records, 1);
    EXPECT_EQ(logins(), 2u);
    EXPECT_TRUE(credentials().loggedIn());
}

// A refusal of the stored identity (4xx) signs out and asks for the login a second later;
// any other failure keeps the listener and warns once per process.
struct RefreshRefusal {
    int status;
    int attempts;
    std::vector<int> loginScreens;
    std::size_t alerts;
    std::vector<std::int64_t> reported;
};

class RefreshRefusalTest : public ServiceProcessSessionTest,
                           public ::testing::WithParamInterface<RefreshRefusal> {};

TEST_P(RefreshRefusalTest, DecidesWhetherTheListenerStays) {
    const auto& c = GetParam();
    signIn();
    admin("POST", "/admin/faults",
          {{"rule", "POST access_token=status:" + std::to_string(c.status)}});
    for (int attempt = 0; attempt < c.attempts; ++attempt) {
        admin("POST", "/admin/tokens/expire", json::object());
        users().getUserData([](const JSON&) { ADD_FAILURE(); }, nullptr);
        platform_->queue.runUntilIdle();
        platform_->queue.advanceBy(0.9);
        EXPECT_THAT(platform_->ui.loginScreens, IsEmpty());
        platform_->queue.advanceBy(0.1);
    }

    EXPECT_EQ(credentials().loggedIn(), c.loginScreens.empty());
    EXPECT_EQ(platform_->ui.loginScreens, c.loginScreens);
    EXPECT_EQ(platform_->ui.alerts.size(), c.alerts);
    EXPECT_EQ(platform_->errors.codesIn("com.tunebrook"), c.reported);
}

INSTANTIATE_TEST_SUITE_P(
    Statuses,
    RefreshRefusalTest,
    ::testing::Values(RefreshRefusal{403, 1, {TBUserManager::kLostSessionLoginSource}, 0, {112}},
                      RefreshRefusal{500, 2, {}, 1, {103, 103}}));

TEST_F(ServiceProcessSessionTest, TheServicesRefusalsReachTheScreenAsItsOwnTexts) {
    std::vector<std::string> messages;
    auto failure = [&](int, const std::string& message, const TBLoginExtra&) {
        messages.push_back(message);
    };
    users().loginWithEmail(demo_["email"], "wrong-password", false, nullptr, failure, nullptr);
    platform_->queue.runUntilIdle();
    platform_->queue.clock().advance(3600);
    users().loginWithEmail(demo_["email"], demo_["password"], false, nullptr, failure, nullptr);
    platform_->queue.runUntilIdle();

    EXPECT_THAT(messages, ElementsAre(TBLocalization::localizedString("login_error_1037"),
                                      TBLocalization::localizedString("login_error_timestamp")));
    EXPECT_FALSE(credentials().loggedIn());
}

}  // namespace
}  // namespace tb::test
