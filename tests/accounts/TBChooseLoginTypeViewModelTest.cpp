#include <nlohmann/json.hpp>

#include "accounts/GivenSocialSignIn.h"
#include "accounts/TBChooseLoginTypeViewModel.h"
#include "accounts/TBSocialAuthenticationManager.h"
#include "api/TBDataManager.h"
#include "core/TBLocalization.h"
#include "platform/JSON.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using json = nlohmann::json;
using Provider = SocialSignIn::Provider;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kSource = 3;

// What the screen heard.
struct Heard {
    int successes = 0;
    std::vector<std::string> failures;
    std::vector<std::string> takenEmails;
    std::vector<std::string> tracked;
};

class TBChooseLoginTypeViewModelTest : public ::testing::Test {
  protected:
    TBChooseLoginTypeViewModelTest() { TBDataManager::useProd(); }

    // A screen over the given social accounts, wired to `heard`.
    std::unique_ptr<TBChooseLoginTypeViewModel> screen(const json& accounts) {
        social_ =
            std::make_unique<GivenSocialSignIn>(GivenSocialSignIn::tokensFrom(JSON(accounts)));
        manager_ = std::make_unique<TBSocialAuthenticationManager>(*social_);
        auto& context = platform.context();
        auto model = std::make_unique<TBChooseLoginTypeViewModel>(
            TBChooseLoginTypeViewModel::Collaborators{
                *manager_, context.userManager(), context.credentials(),
                context.reachabilityManager(),
                [this](bool created, int source, const std::string& type) {
                    heard.tracked.push_back(std::string(created ? "create account " : "login ") +
                                            type + " " + std::to_string(source));
                }},
            kSource);
        model->authenticationSuccess = [this] { ++heard.successes; };
        model->authenticationFailure = [this](const std::string& message, const TBLoginExtra&) {
            heard.failures.push_back(message);
        };
        model->socialLoginEmailAlreadyExists = [this](const std::string& email) {
            heard.takenEmails.push_back(email);
        };
        return model;
    }

    void answer(std::size_t index, int status, const json& body) {
        platform.http.respond(index, status, body.dump());
        platform.queue.runUntilIdle();
    }

    test::TestPlatform platform;
    Heard heard;

  private:
    std::unique_ptr<GivenSocialSignIn> social_;
    std::unique_ptr<TBSocialAuthenticationManager> manager_;
};

TEST_F(TBChooseLoginTypeViewModelTest, ANewAccountIsTrackedAndATakenEmailReachesItsClosure) {
    auto model = screen({{"facebook", {{"id", "11"}, {"token", "fbt"}}},
                         {"twitter", {{"token", "tt"}, {"secret", "ts"}, {"email", "a@x.test"}}}});
    model->authenticate(Provider::facebook);
    EXPECT_THAT(platform.http.request(0).body, ::testing::HasSubstr("fb_user_id=11"));
    answer(0, 200,
           {{"oauth_token", "t"},
            {"social_registration", true},
            {"user", {{"id", "7"}, {"url_slug", "me"}}}});
    EXPECT_EQ(heard.successes, 1);
    EXPECT_THAT(heard.tracked, ElementsAre("create account Facebook 3"));

    model->authenticate(Provider::twitter);  // after the record the first login asked for
    answer(2, 400, {{"message", "Taken"}, {"errorcode", 1057}});
    EXPECT_THAT(heard.takenEmails, ElementsAre("a@x.test"));
    EXPECT_THAT(heard.failures, IsEmpty());
}

TEST_F(TBChooseLoginTypeViewModelTest, NothingIsSentWithoutAnAccountAnEmailOrANetwork) {
    auto model = screen(json::object());
    model->authenticate(Provider::google);  // no account given: the sign-in was cancelled
    EXPECT_THAT(heard.failures, IsEmpty());

    model->checkEmailExistence("");
    platform.reachability.set(false);
    platform.queue.runUntilIdle();
    model->authenticate(Provider::facebook);

    EXPECT_EQ(platform.http.count(), 0u);
    EXPECT_THAT(
        heard.failures,
        ElementsAre(
            TBLocalization::localizedString("authentication_validation_email_empty"),
            TBLocalization::localizedString("feature_not_available_offline_alert_message")));
}

}  // namespace
}  // namespace tb
