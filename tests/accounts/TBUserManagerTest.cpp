#include <fstream>

#include <nlohmann/json.hpp>

#include "accounts/TBCredentials.h"
#include "accounts/TBKeychainManager.h"
#include "accounts/TBUserManager.h"
#include "api/AFXAuthClient.h"
#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "api/TBXAuthClientManager.h"
#include "core/TBLocalization.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/JSON.h"
#include "support/TempDir.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using json = nlohmann::json;
using Params = std::map<std::string, std::string>;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kBase = "https://api.tunebrook.test/v1/";

json loginReply(const std::string& token = "tok1") {
    return {{"oauth_token", token},
            {"oauth_token_secret", "sec"},
            {"oauth_token_expiration", 2000000000},
            {"social_registration", false},
            {"user", {{"id", "7"}, {"url_slug", "me"}, {"screen_name", "Me"}}}};
}

std::string L(const char* key) {
    return TBLocalization::localizedString(key);
}

// What a login handed to its blocks.
struct Outcome {
    int successes = 0;
    int timeouts = 0;
    std::vector<int> statuses;
    std::string message;
    TBLoginExtra extra;
    std::vector<TBFailureInfo> failures;
};

class TBUserManagerTest : public ::testing::Test {
  protected:
    TBUserManagerTest() { start({}); }

    void start(AppOptions options) {
        platform_.reset();
        platform_ = std::make_unique<test::TestPlatform>(std::move(options));
        TBDataManager::useProd();
    }
    // A new start whose social sign-in holds `accounts` (see GivenSocialSignIn).
    void startWithSocialAccounts(const json& accounts) {
        AppOptions options;
        options.socialTokensFile = files_.file("social.json");
        std::ofstream(options.socialTokensFile)
            << (accounts.is_null() ? json::object() : accounts).dump();
        start(options);
    }
    test::TestPlatform& platform() { return *platform_; }
    TBCredentials& credentials() { return platform().context().credentials(); }
    TBUserManager& users() { return platform().context().userManager(); }
    AFXAuthClient& client() { return platform().context().clients().client(); }

    std::size_t sent() const { return platform_->http.count(); }
    const HttpRequest& request(std::size_t index) const { return platform_->http.request(index); }
    std::string path(std::size_t index) const {
        const auto& url = request(index).url;
        return url.substr(std::string(kBase).size(), url.find('?') - std::string(kBase).size());
    }
    // A GET's query, or another method's form body.
    Params params(std::size_t index) const {
        const auto& url = request(index).url;
        const auto query = url.find('?');
        const auto pairs = test::parseFormBody(query == std::string::npos ? request(index).body
                                                                          : url.substr(query + 1));
        return Params(pairs.begin(), pairs.end());
    }
    std::string authorization(std::size_t index) const {
        return findHeader(request(index).headers, "Authorization").value_or("");
    }
    void answer(std::size_t index, int status, const json& body) {
        platform().http.respond(index, status, body.dump());
        platform().queue.runUntilIdle();
    }

    void signInByEmail() {
        credentials().saveUserWithEmail("me@x.test", "pw", std::nullopt, std::nullopt, std::nullopt,
                                        std::nullopt, std::nullopt, "me", "7", "Me", std::nullopt);
    }

    TBLoginSuccessBlock success(Outcome& o) {
        return [&o] { ++o.successes; };
    }
    TBLoginFailureBlock failure(Outcome& o) {
        return [&o](int status, const std::string& message, const TBLoginExtra& extra) {
            o.statuses.push_back(status);
            o.message = message;
            o.extra = extra;
        };
    }
    TBLoginTimeoutBlock timeout(Outcome& o) {
        return [&o] { ++o.timeouts; };
    }
    TBFailureBlock requestFailure(Outcome& o) {
        return [&o](const TBFailureInfo& info) { o.failures.push_back(info); };
    }

  private:
    test::TempDir files_;
    std::unique_ptr<test::TestPlatform> platform_;
};

TEST_F(TBUserManagerTest, EmailLoginPutsTheTokenOnEveryPathAndSignsTheListenersRecord) {
    Outcome o;
    users().loginWithEmail("me@x.test", "pw", false, success(o), failure(o), timeout(o));

    ASSERT_EQ(sent(), 1u);
    EXPECT_EQ(path(0), "access_token");
    EXPECT_EQ(request(0).timeoutSeconds, 30.0);
    EXPECT_EQ(params(0), (Params{{"x_auth_mode", "client_auth"},
                                 {"x_auth_username", "me@x.test"},
                                 {"x_auth_password", "pw"},
                                 {"os_type", "ios"}}));

    answer(0, 200, loginReply("usertoken1"));
    EXPECT_EQ(o.successes, 1);
    EXPECT_EQ(client().token()->key(), "usertoken1");
    EXPECT_EQ(platform().context().clients().jsonClient().token()->key(), "usertoken1");
    auto& c = credentials();
    using Texts = std::vector<std::optional<std::string>>;
    EXPECT_EQ((Texts{c.token(), c.userEmail(), c.userPassword(), c.userSlug(), c.userId(),
                     c.userScreenName(), c.registeredViaSocial()}),
              (Texts{"usertoken1", "me@x.test", "pw", "me", "7", "Me", "false"}));
    EXPECT_EQ(c.tokenExpiration(), 2000000000);
    ASSERT_EQ(sent(), 2u);
    EXPECT_EQ(path(1), "user");
    EXPECT_THAT(authorization(1), HasSubstr("usertoken1"));
}

TEST_F(TBUserManagerTest, AReplyWithoutTheUsersIdFailsWithAZeroStatusAndKeepsNothing) {
    Outcome o;
    users().loginWithEmail("me@x.test", "pw", false, success(o), failure(o), timeout(o));
    auto reply = loginReply();
    reply["user"].erase("id");
    answer(0, 200, reply);

    EXPECT_EQ(o.successes, 0);
    EXPECT_THAT(o.statuses, ElementsAre(0));
    EXPECT_EQ(credentials().token(), std::nullopt);
    EXPECT_FALSE(credentials().loggedIn());
}

enum class Kind { email, facebook, google, twitter, signup };

// Signs in by `kind`; with `empty`, one credential the login needs is missing.
void loginBy(Kind kind,
             TBUserManager& users,
             const std::optional<std::string>& email,
             TBLoginFailureBlock failure,
             bool empty = false) {
    const std::string secret = empty ? "" : "secret";
    switch (kind) {
        case Kind::email:
            return users.loginWithEmail(secret, "secret-pw", false, nullptr, failure, nullptr);
        case Kind::facebook:
            return users.loginWithFacebookId("11", secret, email, false, nullptr, failure, nullptr);
        case Kind::google:
            return users.loginWithGoogleIdToken(secret, email, false, nullptr, failure, nullptr);
        case Kind::twitter:
            return users.loginWithTwitterToken("tt", secret, email, false, nullptr, failure,
                                               nullptr);
        case Kind::signup:
            return users.registerUser(secret, "Me", "secret-pw", nullptr, failure, nullptr);
    }
}

struct RefusalCase {
    const char* name;
    Kind kind;
    std::optional<std::string> email;
    int status;
    const char* reply;
    std::string message;
    TBLoginExtra extra;
};

class RefusalTest : public TBUserManagerTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(RefusalTest, TellsTheScreenWhatToShowAndWhatToSendAgain) {
    const auto& c = GetParam();
    Outcome o;
    loginBy(c.kind, users(), c.email, failure(o));
    answer(0, c.status, json::parse(c.reply));

    EXPECT_THAT(o.statuses, ElementsAre(c.status));
    EXPECT_EQ(o.message, c.message);
    EXPECT_EQ(o.extra, c.extra);
}

const char* kNeedEmail = R"({"description": "Need an email", "errorcode": 1052})";

RefusalCase refusal(const char* name,
                    Kind kind,
                    std::optional<std::string> email,
                    int status,
                    const char* reply,
                    std::string message,
                    TBLoginExtra extra = {}) {
    return {name, kind, std::move(email), status, reply, std::move(message), std::move(extra)};
}

INSTANTIATE_TEST_SUITE_P(
    Replies,
    RefusalTest,
    ::testing::Values(refusal("StaleClock",
                              Kind::email,
                              {},
                              401,
                              R"({"message": "Refused: expired timestamp", "errorcode": 1})",
                              L("login_error_timestamp")),
                      refusal("WrongPassword",
                              Kind::email,
                              {},
                              401,
                              R"({"description": "Invalid", "errorcode": 1037})",
                              L("login_error_1037")),
                      refusal("FacebookWithoutEmail",
                              Kind::facebook,
                              {},
                              400,
                              kNeedEmail,
                              "Need an email",
                              {{"socialId", "11"}, {"socialToken", "secret"}}),
                      refusal("TwitterWithoutEmail",
                              Kind::twitter,
                              {},
                              400,
                              kNeedEmail,
                              "Need an email",
                              {{"socialToken", "tt"}, {"socialSecret", "secret"}}),
                      refusal("GoogleWithoutEmail",
                              Kind::google,
                              {},
                              400,
                              R"({"description": "", "message": "Need one", "errorcode": "1052"})",
                              "Need one",
                              {{"socialToken", "secret"}}),
                      refusal("EmailOfAnotherAccount",
                              Kind::google,
                              "a@x.test",
                              400,
                              R"({"message": "Taken", "errorcode": 1057})",
                              "Taken",
                              {{"socialEmail", "a@x.test"}}),
                      refusal("NoMessage", Kind::email, {}, 500, "{}", L("generic_api_error"))),
    [](const auto& test) { return std::string(test.param.name); });

struct EmptyCase {
    Kind kind;
    const char* text;
};

class EmptyCredentialsTest : public TBUserManagerTest,
                             public ::testing::WithParamInterface<EmptyCase> {};

TEST_P(EmptyCredentialsTest, NeverReachTheServiceAndNeverReportAPassword) {
    Outcome o;
    loginBy(GetParam().kind, users(), std::nullopt, failure(o), true);

    EXPECT_EQ(sent(), 0u);
    EXPECT_THAT(o.statuses, ElementsAre(0));
    ASSERT_EQ(platform().errors.records.size(), 1u);
    const auto& record = platform().errors.records[0];
    EXPECT_EQ(record.error.message, GetParam().text);
    for (const auto& [key, value] : record.additionalInfo) {
        EXPECT_EQ(value.find("secret-pw"), std::string::npos) << key;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Logins,
    EmptyCredentialsTest,
    ::testing::Values(EmptyCase{Kind::email, "Empty username or password during login"},
                      EmptyCase{Kind::facebook, "Empty facebook id or token during auth"},
                      EmptyCase{Kind::google, "Empty google token during auth"},
                      EmptyCase{Kind::twitter, "Empty twitter token or secret during auth"},
                      EmptyCase{Kind::signup, "Empty username or password during signup"}));

TEST_F(TBUserManagerTest, SignupHasTenSecondsAndJoinsTheFieldErrors) {
    Outcome o;
    users().registerUser("me@x.test", "Me", "longpassword", success(o), failure(o), timeout(o));
    EXPECT_EQ(path(0), "user/register");
    EXPECT_EQ(request(0).timeoutSeconds, 10.0);
    EXPECT_EQ(params(0)["password2"], "longpassword");
    answer(0, 400, {{"errors", {{"email", {"Taken"}}, {"password", {"Short", "Weak"}}}}});
    EXPECT_EQ(o.message, "Taken.  Short.  Weak");

    users().registerUser("me@x.test", "Me", "longpassword", success(o), failure(o), timeout(o));
    platform().http.fail(1, URLError::kTimedOut);
    platform().queue.runUntilIdle();
    EXPECT_EQ(o.timeouts, 1);
    EXPECT_EQ(o.statuses.size(), 1u);

    bool taken = false;
    users().checkExistenceOfEmail(
        "me@x.test", "me", [&](bool t) { taken = t; }, nullptr);
    EXPECT_EQ(request(2).timeoutSeconds, 25.0) << "the sign-up's time-out must not linger";
    EXPECT_EQ(params(2), (Params{{"email", "me@x.test"}, {"slug", "me"}}));
    answer(2, 200, {{"taken", true}});
    EXPECT_TRUE(taken);
}

TEST_F(TBUserManagerTest, An401LogsInOnceAndRepeatsThePendingRequestWithTheNewToken) {
    signInByEmail();
    int records = 0;
    Outcome o;
    users().getUserData([&](const JSON&) { ++records; }, requestFailure(o));
    answer(0, 401, {{"message", "token expired"}});

    EXPECT_EQ(path(1), "access_token");
    EXPECT_EQ(params(1)["x_auth_username"], "me@x.test");
    EXPECT_TRUE(users().refreshingToken());
    bool failedAtOnce = false;
    users().refreshTokenWithSuccess([] { ADD_FAILURE(); }, [&] { failedAtOnce = true; });
    EXPECT_TRUE(failedAtOnce) << "a 401 during a refresh is not queued";
    EXPECT_EQ(sent(), 2u);

    answer(1, 200, loginReply("fresh"));
    EXPECT_FALSE(users().refreshingToken());
    ASSERT_EQ(sent(), 4u) << "the repeat, then the record the login asks for";
    EXPECT_EQ(path(2), "user");
    EXPECT_THAT(authorization(2), HasSubstr("fresh"));
    answer(2, 200, {{"url_slug", "me"}});
    EXPECT_EQ(records, 1);
    EXPECT_THAT(o.failures, IsEmpty());
}

TEST_F(TBUserManagerTest, APostRefreshesOnA401AndIsSentAgainWithTheSameParameters) {
    signInByEmail();
    Outcome o;
    int successes = 0;
    users().postToService(
        std::string(kBase) + "user/favorite", {{"music_id", "5"}},
        [&](const JSON&) { ++successes; }, requestFailure(o), nullptr);
    answer(0, 401, json::object());
    EXPECT_THAT(platform().errors.codesIn("com.tunebrook"), ElementsAre(102));
    answer(1, 200, loginReply("fresh"));

    ASSERT_EQ(sent(), 4u);
    EXPECT_EQ(path(3), "user/favorite");
    EXPECT_EQ(params(3), (Params{{"music_id", "5"}}));
    EXPECT_THAT(authorization(3), HasSubstr("fresh"));
    answer(3, 200, {{"ok", true}});
    EXPECT_EQ(successes, 1);
    EXPECT_THAT(o.failures, IsEmpty());
}

class PostTimeoutTest : public TBUserManagerTest, public ::testing::WithParamInterface<bool> {};

TEST_P(PostTimeoutTest, RunsOnlyTheTimeOutBlockOrElseTellsTheListenerAndFails) {
    const bool withBlock = GetParam();
    Outcome o;
    users().postToService(std::string(kBase) + "user/favorite", json::object(), nullptr,
                          requestFailure(o), withBlock ? timeout(o) : nullptr);
    platform().http.fail(0, URLError::kTimedOut);
    platform().queue.runUntilIdle();

    EXPECT_EQ(o.timeouts, withBlock ? 1 : 0);
    EXPECT_EQ(o.failures.size(), withBlock ? 0u : 1u);
    EXPECT_EQ(platform().ui.toasts.size(), withBlock ? 0u : 1u);
}

INSTANTIATE_TEST_SUITE_P(Blocks, PostTimeoutTest, ::testing::Bool());

TEST_F(TBUserManagerTest, TheUserRecordFillsTheSetsTheKeychainAndTheSavedArtist) {
    platform().context().dataManager().startup();
    signInByEmail();
    users().getUserData(nullptr, nullptr);
    const json song = {{"id", "21"}, {"type", "song"}, {"title", "S"}, {"artist", "A"}};
    const json playlist = {{"id", "22"}, {"type", "playlist"}, {"title", "P"}};
    answer(0, 200,
           {{"id", "7"},
            {"url_slug", "me2"},
            {"name", "Me Two"},
            {"email", "new@x.test"},
            {"favorite_music", {1, "2"}},
            {"favorite_playlists", {"3"}},
            {"playlists", {4}},
            {"following", {"5"}},
            {"reups", {6}},
            {"new_feed_items", 3},
            {"pinned", {song, playlist}}});

    auto& c = credentials();
    EXPECT_EQ(c.favoriteMusic(), (std::set<std::string>{"1", "2"}));
    EXPECT_EQ(c.favoritePlaylists(), (std::set<std::string>{"3"}));
    EXPECT_EQ(c.userPlaylists(), (std::set<std::string>{"4"}));
    EXPECT_TRUE(c.artistIsFollowed("5"));
    EXPECT_EQ(c.reups(), (std::set<std::string>{"6"}));
    ASSERT_EQ(c.highlights().size(), 2u);
    EXPECT_TRUE(c.highlights()[1]->isPlaylist);
    EXPECT_EQ(c.userSlug(), "me2");
    EXPECT_EQ(c.userScreenName(), "Me Two");
    EXPECT_EQ(c.userEmail(), "new@x.test");
    EXPECT_EQ(c.feedUnseen(), 3);
    ASSERT_NE(c.savedArtist(), nullptr);
    EXPECT_EQ(c.savedArtist()->urlSlug, "me2");
    EXPECT_THAT(platform().sdks.callNames(), ElementsAre("MixpanelTracker.setUserProperties"));
}

// ---- Signing in again with the stored identity ------------------------------------------

struct AutoLoginCase {
    const char* name;
    json socialTokens;  // what the social sign-in was given
    Params stored;      // keychain entries
    Params sent;        // the login's identity, when one is sent
    const char* failureKey;
};

AutoLoginCase autoLogin(const char* name,
                        json socialTokens,
                        Params stored,
                        Params sent,
                        const char* failureKey = nullptr) {
    return {name, std::move(socialTokens), std::move(stored), std::move(sent), failureKey};
}

class AutoLoginTest : public TBUserManagerTest,
                      public ::testing::WithParamInterface<AutoLoginCase> {};

TEST_P(AutoLoginTest, SignsInWithTheStoredIdentityAndFreshSocialTokens) {
    const auto& c = GetParam();
    startWithSocialAccounts(c.socialTokens);
    for (const auto& [key, value] : c.stored) {
        credentials().keychainManager().setWithString(value, key);
    }

    Outcome o;
    users().checkAutoLoginWithSuccessBlock(success(o), nullptr, timeout(o), failure(o));

    if (c.failureKey) {
        EXPECT_EQ(sent(), 0u);
        EXPECT_THAT(o.statuses, ElementsAre(400));
        EXPECT_EQ(o.message, L(c.failureKey));
        return;
    }
    ASSERT_EQ(sent(), 1u);
    auto sentParams = params(0);
    for (const auto& [key, value] : c.sent) {
        EXPECT_EQ(sentParams[key], value) << key;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Identities,
    AutoLoginTest,
    ::testing::Values(
        autoLogin("ExpiredFacebookTokenIsRenewedFirst",
                  {{"facebook", {{"id", "11"}, {"token", "fbt"}, {"expired", true}}}},
                  {{"facebookId", "11"}, {"socialEmail", "s@x.test"}},
                  {{"fb_user_id", "11"}, {"fb_token", "fbt"}, {"u_auth_email", "s@x.test"}}),
        autoLogin("FacebookWithoutToken",
                  {},
                  {{"facebookId", "11"}},
                  {},
                  "login_error_message_facebook"),
        autoLogin("GoogleGivesAFreshIdToken",
                  {{"google", {{"token", "fresh-g"}}}},
                  {{"googleIdToken", "old-g"}},
                  {{"g_token", "fresh-g"}}),
        autoLogin("GoogleWithoutUser",
                  {},
                  {{"googleIdToken", "old-g"}},
                  {},
                  "login_google_error_message"),
        autoLogin("Twitter",
                  {},
                  {{"twitterToken", "tt"}, {"twitterSecret", "ts"}},
                  {{"t_token", "tt"}, {"t_secret", "ts"}}),
        autoLogin("EmailWithoutAnySocialCall",
                  {},
                  {{"email", "me@x.test"}, {"password", "pw"}},
                  {{"x_auth_username", "me@x.test"}, {"x_auth_password", "pw"}}),
        autoLogin("SignedOut", {}, {}, {}, "login_error_1037")),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(TBUserManagerTest, TheSplashRenewsTheSocialTokenWithoutAskingTheService) {
    startWithSocialAccounts({{"google", {{"token", "fresh-g"}}}});
    credentials().keychainManager().setWithString("old-g", "googleIdToken");
    int successes = 0;
    int offline = 0;
    users().refreshSocialTokensWithSuccessBlock([&] { ++successes; }, [&] { ++offline; }, nullptr);
    EXPECT_EQ(successes, 1);
    EXPECT_EQ(credentials().googleIdToken(), "fresh-g");

    platform().reachability.set(false);
    platform().queue.runUntilIdle();
    users().refreshSocialTokensWithSuccessBlock([&] { ++successes; }, [&] { ++offline; }, nullptr);
    EXPECT_EQ(offline, 1);
    EXPECT_EQ(successes, 1);
    EXPECT_EQ(sent(), 0u);
}

TEST_F(TBUserManagerTest, OfflineAutoLoginAndRefreshSendNothing) {
    signInByEmail();
    platform().reachability.set(false);
    platform().queue.runUntilIdle();
    int offline = 0;
    bool refreshFailed = false;
    users().checkAutoLoginWithSuccessBlock(
        nullptr, [&] { ++offline; }, nullptr, nullptr);
    users().refreshTokenWithSuccess([] { ADD_FAILURE(); }, [&] { refreshFailed = true; });

    EXPECT_EQ(offline, 1);
    EXPECT_TRUE(refreshFailed);
    EXPECT_FALSE(users().refreshingToken());
    EXPECT_EQ(sent(), 0u);
    EXPECT_TRUE(credentials().loggedIn());
}

}  // namespace
}  // namespace tb
