#include "service/ServiceFixture.h"
#include "tunebrook-service/http/ErrorCodes.h"

namespace tb::test {
namespace {

using Scheme = ServiceFixture::Scheme;

class ServiceAccountsTest : public ServiceFixture {
  protected:
    Answer social(const ServiceTestSigner::Params& params) {
        signer_.clearToken();
        return call("POST", "access_token", params);
    }
};

TEST_F(ServiceAccountsTest, PasswordLoginAnswersTheTokenAndTheUser) {
    auto answer = loginDemo();
    EXPECT_TRUE(answer["oauth_token"].is_string());
    EXPECT_TRUE(answer["oauth_token_secret"].is_string());
    EXPECT_TRUE(answer["oauth_token_expiration"].is_number_integer());
    EXPECT_EQ(answer["social_registration"], false);
    EXPECT_TRUE(answer["user"]["id"].is_string());
    EXPECT_TRUE(answer["user"]["url_slug"].is_string());
    EXPECT_TRUE(answer["user"].contains("screen_name"));

    auto user = call("GET", "user");
    ASSERT_EQ(user.status, 200);
    EXPECT_EQ(user.json["url_slug"], answer["user"]["url_slug"]);
    for (const char* key :
         {"favorite_music", "favorite_playlists", "playlists", "following", "reups", "pinned"}) {
        EXPECT_TRUE(user.json[key].is_array()) << key;
    }
    EXPECT_TRUE(user.json["new_feed_items"].is_number());
}

TEST_F(ServiceAccountsTest,
       AWrongPasswordIsTheGenericLoginErrorAndForgottenPasswordKnowsItsAccounts) {
    auto answer = login("demo@tunebrook.test", "not it");
    EXPECT_EQ(answer["errorcode"], 1037);
    EXPECT_FALSE(answer["message"].get<std::string>().empty());
    signer_.clearToken();
    auto badMode = call("POST", "access_token",
                        {{"x_auth_mode", "other"},
                         {"x_auth_username", "demo@tunebrook.test"},
                         {"x_auth_password", demoPassword()}});
    EXPECT_EQ(badMode.status, 400);
}

TEST_F(ServiceAccountsTest, SocialLoginRegistersAsksForAnEmailOrRefusesATakenOne) {
    auto noEmail = social({{"fb_user_id", "777"}, {"fb_token", "fbtoken-777"}});
    EXPECT_EQ(noEmail.json["errorcode"], 1052);
    auto taken = social({{"fb_user_id", "777"},
                         {"fb_token", "fbtoken-777"},
                         {"u_auth_email", "demo@tunebrook.test"}});
    EXPECT_EQ(taken.json["errorcode"], 1057);
    auto fresh = social(
        {{"fb_user_id", "777"}, {"fb_token", "fbtoken-777"}, {"u_auth_email", "new@example.com"}});
    ASSERT_EQ(fresh.status, 200) << fresh.body;
    EXPECT_EQ(fresh.json["social_registration"], true);
    auto again = social({{"fb_user_id", "777"}, {"fb_token", "fbtoken-777"}});
    EXPECT_EQ(again.json["social_registration"], false);
    EXPECT_EQ(again.json["user"]["id"], fresh.json["user"]["id"]);

    auto google = social({{"g_token", "gtoken-g1:g1@example.com"}});
    EXPECT_EQ(google.json["social_registration"], true);
    EXPECT_EQ(social({{"t_token", "ttoken-t1"}, {"t_secret", "wrong"}}).json["errorcode"], 1037);
    EXPECT_EQ(social({{"fb_user_id", "1"}, {"fb_token", "fbtoken-2"}}).json["errorcode"], 1037);
}

TEST_F(ServiceAccountsTest, RegistrationListsItsErrorsByFieldAndThenLogsIn) {
    auto refused = call("POST", "user/register",
                        {{"email", "not an email"},
                         {"artist_name", ""},
                         {"password", "short"},
                         {"password2", "short"},
                         {"os_type", "ios"}});
    EXPECT_EQ(refused.status, 400);
    EXPECT_TRUE(refused.json["errors"]["email"].is_array());
    EXPECT_TRUE(refused.json["errors"]["artist_name"].is_array());
    EXPECT_TRUE(refused.json["errors"]["password"].is_array());

    auto mismatch = call("POST", "user/register",
                         {{"email", "x@example.com"},
                          {"artist_name", "X"},
                          {"password", "long enough"},
                          {"password2", "other one"}});
    EXPECT_TRUE(mismatch.json["errors"]["password2"].is_array());

    auto made = call("POST", "user/register",
                     {{"email", "fresh@example.com"},
                      {"artist_name", "Fresh Voice"},
                      {"password", "long enough"},
                      {"password2", "long enough"}});
    ASSERT_EQ(made.status, 200) << made.body;
    EXPECT_EQ(made.json["user"]["url_slug"], "fresh-voice");
    EXPECT_EQ(login("fresh@example.com", "long enough")["user"]["id"], made.json["user"]["id"]);
    auto check = call("GET", "identity_check", {{"email", "FRESH@example.com"}});
    EXPECT_EQ(check.json["taken"], true);
    EXPECT_EQ(call("GET", "identity_check", {{"slug", "nobody-yet"}}).json["taken"], false);
}

TEST_F(ServiceAccountsTest, AnExpiredTokenIsRefusedUntilTheNextLogin) {
    loginDemo();
    ASSERT_EQ(call("GET", "user").status, 200);
    auto expired = raw("POST", "/admin/tokens/expire", {}, "{}", "application/json");
    EXPECT_GE(expired.json["expired"].get<int>(), 1);
    auto refused = call("GET", "user");
    EXPECT_EQ(refused.status, 401);
    EXPECT_EQ(refused.json["errorcode"], tb::service::kExpiredToken);
    // Catalogue calls with the dead token are refused too, which is what starts a refresh.
    EXPECT_EQ(call("GET", "featured").status, 401);
    loginDemo();
    EXPECT_EQ(call("GET", "user").status, 200);
}

TEST_F(ServiceAccountsTest, UnsignedCallsAndUserPathsWithoutATokenAreRefused) {
    auto unsigned_ = call("GET", "featured", {}, Scheme::none);
    EXPECT_EQ(unsigned_.status, 401);
    EXPECT_TRUE(unsigned_.json["errorcode"].is_number() && unsigned_.json.contains("message"));
    EXPECT_EQ(call("GET", "user").status, 401);
    EXPECT_EQ(call("GET", "user/feed").status, 401);
    EXPECT_EQ(call("POST", "user/downloads", {{"music_id", "1"}}).status, 401);

    EXPECT_EQ(call("POST", "user/forgot-password", {{"email", "demo@tunebrook.test"}}).status, 200);
    auto unknown = call("POST", "user/forgot-password", {{"email", "ghost@example.com"}});
    EXPECT_EQ(unknown.status, 404);
    EXPECT_TRUE(unknown.json["errors"]["email"].is_array());
}

// A standard client writes a space in a form body or query as "+" and signs the decoded text.
class ServicePlusAsSpaceTest : public ServiceFixture,
                               public ::testing::WithParamInterface<ServiceFixture::Scheme> {};

TEST_P(ServicePlusAsSpaceTest, APlusInASignedFormOrQueryIsASpaceAndTamperingIsStillRefused) {
    const std::string form = "application/x-www-form-urlencoded";
    const std::string body = "email=bars%40example.com&password=long+enough&password2=long+enough";
    std::map<std::string, std::string> signedForm{
        {"Authorization", authorization("POST", "user/register",
                                        {{"email", "bars@example.com"},
                                         {"artist_name", "Bars Listener"},
                                         {"password", "long enough"},
                                         {"password2", "long enough"}},
                                        GetParam())}};
    auto tampered =
        raw("POST", "/v1/user/register", signedForm, body + "&artist_name=Bars+Lis", form);
    EXPECT_EQ(tampered.status, 401);
    EXPECT_EQ(tampered.json["message"], "Invalid signature");
    auto made =
        raw("POST", "/v1/user/register", signedForm, body + "&artist_name=Bars+Listener", form);
    ASSERT_EQ(made.status, 200) << made.body;
    EXPECT_EQ(made.json["user"]["url_slug"], "bars-listener");

    std::map<std::string, std::string> signedQuery{
        {"Authorization", authorization("GET", "search", {{"q", "Bars Listener"}}, GetParam())}};
    EXPECT_EQ(raw("GET", "/v1/search?q=Bars+Lis", signedQuery).status, 401);
    EXPECT_EQ(raw("GET", "/v1/search?q=Bars+Listener", signedQuery).status, 200);
}

INSTANTIATE_TEST_SUITE_P(BothSchemes,
                         ServicePlusAsSpaceTest,
                         ::testing::Values(ServiceFixture::Scheme::serializer,
                                           ServiceFixture::Scheme::signer));

}  // namespace
}  // namespace tb::test
