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
        platform_->http.on([](const HttpRequest&) { return true; },
                           [this](const HttpRequest& request) { return forward(request); });
        TBDataManager::useProd();
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

struct RefreshRefusal {
    int status;
    bool signedOut;
    int attempts;
};

class RefreshRefusalTest : public ServiceProcessSessionTest,
                           public ::testing::WithParamInterface<RefreshRefusal> {};

TEST_P(RefreshRefusalTest, ARefusalSignsOutWhileAnyOtherFailureWarnsOnce) {
    signIn();
    admin("POST", "/admin/faults",
          {{"rule", "POST access_token=status:" + std::to_string(GetParam().status)}});
    for (int attempt = 0; attempt < GetParam().attempts; ++attempt) {
        admin("POST", "/admin/tokens/expire", json::object());
        users().getUserData([](const JSON&) { ADD_FAILURE(); }, nullptr);
        platform_->queue.runUntilIdle();
        platform_->queue.advanceBy(1.0);
    }

    auto& ui = platform_->ui;
    EXPECT_EQ(credentials().loggedIn(), !GetParam().signedOut);
    if (GetParam().signedOut) {
        EXPECT_THAT(ui.loginScreens, ElementsAre(TBUserManager::kLostSessionLoginSource));
        EXPECT_THAT(ui.alerts, IsEmpty());
    } else {
        EXPECT_THAT(ui.loginScreens, IsEmpty());
        EXPECT_EQ(ui.alerts.size(), 1u);
    }
}

INSTANTIATE_TEST_SUITE_P(Statuses,
                         RefreshRefusalTest,
                         ::testing::Values(RefreshRefusal{403, true, 1},
                                           RefreshRefusal{500, false, 2}));

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
