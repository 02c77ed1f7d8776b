#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "support/AppRun.h"
#include "support/FileContents.h"
#include "support/ServiceSuite.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

using json = nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

// The account commands of the tunebrook binary against one reference service; each test
// has a home of its own. What the service was told comes from its report.
class AccountCommandsTest : public ServiceSuite {
  protected:
    static void SetUpTestSuite() {
        ServiceSuite::SetUpTestSuite();
        demo_ = json::parse(readFileText(serviceFile("demo-account.json")), nullptr, false);
    }

    std::vector<std::string> withHome(std::vector<std::string> arguments,
                                      const std::string& keys = {}) const {
        arguments.insert(arguments.begin(), {"--home", home_.path(), "--keys",
                                             keys.empty() ? serviceFile("keys.json") : keys});
        return arguments;
    }
    AppRun app(std::vector<std::string> arguments) const {
        return AppRun::of(TB_APP_BINARY, withHome(std::move(arguments)));
    }
    AppRun loginAsDemo() const {
        return AppRun::withInput(TB_APP_BINARY,
                                 withHome({"login", "--email", demo_["email"], "--password-stdin"}),
                                 demo_["password"].get<std::string>() + "\n");
    }

    static json events(const std::string& kind) {
        return admin("GET", "/admin/report?kind=" + kind)["events"];
    }

    static void expectSignedOut(const AppRun& whoami) {
        EXPECT_EQ(whoami.status, 1);
        EXPECT_THAT(whoami.out, HasSubstr("Nobody is signed in."));
    }

    inline static json demo_;
    TempDir home_;
};

TEST_F(AccountCommandsTest, ASignInLastsAcrossRunsAndEveryRequestCarriesTheToken) {
    const AppRun login = loginAsDemo();
    ASSERT_EQ(login.status, 0) << login.err;
    EXPECT_THAT(login.out, HasSubstr("Signed in as"));

    admin("DELETE", "/admin/report");
    const AppRun whoami = app({"--json", "whoami"});
    ASSERT_EQ(whoami.status, 0) << whoami.err;
    const json me = json::parse(whoami.out, nullptr, false);
    EXPECT_EQ(me["slug"], demo_["url_slug"]);
    EXPECT_EQ(me["checked_with_service"], true);
    ASSERT_EQ(app({"trending"}).status, 0);

    const json requests = events("request");
    ASSERT_GE(requests.size(), 2u);
    for (const auto& request : requests) {
        EXPECT_EQ(request["account_id"].dump(), me["id"].get<std::string>()) << request.dump();
    }
    EXPECT_TRUE(events("login").empty()) << "the stored token was used, not a new login";

    // The password shows nowhere, and only private files may hold it (the keychain's).
    const std::string password = demo_["password"];
    for (const AppRun& run : {login, whoami}) {
        EXPECT_THAT(run.out + run.err, Not(HasSubstr(password)));
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home_.path())) {
        if (entry.is_regular_file() &&
            readFileText(entry.path()).find(password) != std::string::npos) {
            struct stat info {};
            ASSERT_EQ(stat(entry.path().c_str(), &info), 0);
            EXPECT_EQ(info.st_mode & 077, 0u) << entry.path();
        }
    }

    const AppRun logout = app({"logout"});
    EXPECT_EQ(logout.status, 0);
    EXPECT_THAT(logout.out, HasSubstr("Signed out of " + demo_["url_slug"].get<std::string>()));
    expectSignedOut(app({"whoami"}));
}

struct Identity {
    const char* name;
    std::vector<std::string> loginArguments;
};

class AccountRefreshTest : public AccountCommandsTest,
                           public ::testing::WithParamInterface<Identity> {};

// The service's token lapses between two runs: the next catalogue request is refused once,
// the stored identity signs in again, and the request is sent once more.
TEST_P(AccountRefreshTest, AnExpiredTokenGivesOneFreshLoginAndOneRepeat) {
    std::vector<std::string> arguments = GetParam().loginArguments;
    const AppRun login = arguments.empty() ? loginAsDemo() : app(arguments);
    ASSERT_EQ(login.status, 0) << login.err;

    admin("POST", "/admin/tokens/expire", json::object());
    admin("DELETE", "/admin/report");
    const AppRun trending = app({"trending"});
    EXPECT_EQ(trending.status, 0) << trending.err;

    EXPECT_EQ(events("login").size(), 1u);
    EXPECT_EQ(events("auth_refused").size(), 1u);
    std::size_t repeats = 0;
    for (const auto& request : events("request")) {
        repeats += request["data"]["path"] == "music/trending" ? 1 : 0;
    }
    EXPECT_EQ(repeats, 1u);
    EXPECT_EQ(app({"whoami"}).status, 0);
}

INSTANTIATE_TEST_SUITE_P(Identities,
                         AccountRefreshTest,
                         ::testing::Values(Identity{"email", {}},
                                           Identity{"google",
                                                    {"login", "--social", "google", "--token",
                                                     "gtoken-7101:g7101@example.com"}},
                                           Identity{
                                               "facebook",
                                               {"login", "--social", "facebook", "--id", "7102",
                                                "--token", "fbtoken-7102:f7102@example.com"}}),
                         [](const auto& param) { return std::string(param.param.name); });

// The renewal of a lapsed token is refused: a 4xx signs the device out, anything else keeps
// the listener and says so once. Either way the command ends at once instead of waiting on a
// request that the failed renewal will never send again.
TEST_F(AccountCommandsTest, ARefusedRenewalSignsOutOnlyWhenTheServiceRefusesTheIdentity) {
    for (const int status : {403, 500}) {
        SCOPED_TRACE(status);
        ASSERT_EQ(loginAsDemo().status, 0);
        admin("POST", "/admin/tokens/expire", json::object());
        admin("POST", "/admin/faults",
              {{"rule", "POST access_token=status:" + std::to_string(status) + ",times=1"}});
        const AppRun whoami = app({"whoami"});
        EXPECT_LT(whoami.seconds, 20);
        if (status == 403) {
            EXPECT_EQ(whoami.status, 1);
            expectSignedOut(app({"whoami"}));
        } else {
            EXPECT_EQ(whoami.status, 0) << whoami.err;
            EXPECT_THAT(whoami.out, HasSubstr("[alert] Couldn't refresh your session"));
            EXPECT_THAT(whoami.out, HasSubstr("Signed in as"));
        }
        admin("DELETE", "/admin/faults");
    }
}

TEST_F(AccountCommandsTest, ARefusedOrUnansweredLoginSaysSoInOneLineAndSignsNobodyIn) {
    std::string deadKeys = readFileText(serviceFile("keys.json"));
    const std::string port = ":" + std::to_string(service().port());
    for (auto at = deadKeys.find(port); at != std::string::npos; at = deadKeys.find(port)) {
        deadKeys.replace(at, port.size(), ":1");
    }
    const std::string deadKeysPath = home_.file("dead-keys.json");
    ASSERT_TRUE(writeFileText(deadKeysPath, deadKeys));

    const std::string email = demo_["email"];
    const std::vector<std::pair<std::vector<std::string>, std::string>> attempts = {
        {withHome({"login", "--email", email, "--password", "not-the-password"}), ""},
        {withHome({"login", "--email", "nobody@example.com", "--password", "whatever"}), ""},
        {withHome({"login", "--email", email, "--password", "x"}, deadKeysPath),
         "the service can't be reached"},
    };
    for (const auto& [arguments, expected] : attempts) {
        const AppRun run = AppRun::of(TB_APP_BINARY, arguments);
        EXPECT_NE(run.status, 0);
        // One line of our own; the keychain's notice of where it keeps things may precede it.
        std::string ours = run.err;
        if (ours.rfind("[Keychain]", 0) == 0) {
            ours.erase(0, ours.find('\n') + 1);
        }
        EXPECT_EQ(std::count(ours.begin(), ours.end(), '\n'), 1) << run.err;
        EXPECT_THAT(run.err, HasSubstr("tunebrook: login: " + expected));
        EXPECT_THAT(run.out + run.err, Not(HasSubstr("not-the-password")));
        expectSignedOut(app({"whoami"}));
    }
}

TEST_F(AccountCommandsTest, RegisteringSignsTheNewAccountInAndATakenEmailIsRefused) {
    const std::vector<std::string> arguments = {
        "register",    "--email",    "fresh7103@example.com", "--artist-name",
        "Fresh Voice", "--password", "a-long-password-7103"};
    const AppRun first = app(arguments);
    ASSERT_EQ(first.status, 0) << first.err;
    EXPECT_THAT(first.out, HasSubstr("Registered and signed in as"));
    EXPECT_EQ(app({"whoami"}).status, 0);

    EXPECT_EQ(app({"logout"}).status, 0);
    const AppRun again = app(arguments);
    EXPECT_NE(again.status, 0);
    EXPECT_THAT(again.err, HasSubstr("tunebrook: register: "));
    expectSignedOut(app({"whoami"}));
}

}  // namespace
}  // namespace tb::test
