#include <fstream>

#include <nlohmann/json.hpp>

#include "api/API.h"
#include "api/APIBaseURLProvider.h"
#include "api/AlamofireNetworkLayer.h"
#include "api/BrowseAPI.h"
#include "api/ProfileEditError.h"
#include "api/SocialAPI.h"
#include "api/TBDataManager.h"
#include "model/Item.h"
#include "platform/Clock.h"
#include "platform/RunLoop.h"
#include "platform/linux/CurlHttpTransport.h"
#include "platform/linux/SystemRandomSource.h"
#include "support/ServiceCall.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

class FixedBaseURL final : public APIBaseURLProvider {
  public:
    explicit FixedBaseURL(std::string url) : url_(std::move(url)) {}
    std::string baseURL() const override { return url_; }

  private:
    std::string url_;
};

// The typed layer over the real transport against the service's verifier: the service takes
// what the typed signer signs, and refuses a token the moment it is revoked.
class ServiceProcessTypedLayerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(service_.started()) << service_.error();
        device_.context().dataManager().startup();
        layer_ = std::make_unique<AlamofireNetworkLayer>(
            AlamofireNetworkLayer::Collaborators{
                http_, loop_, random_, clock_, device_.context().coreDataManager(),
                std::make_unique<FixedBaseURL>(service_.baseUrl())},
            AlamofireNetworkLayer::Keys{service_.consumerKey(), service_.consumerSecret()}, "1.0");
        api_ = std::make_unique<API>(layer_->xAuthRequestAdapter());
    }

    template <typename T>
    PromiseResult<T> await(const Promise<T>& promise) {
        EXPECT_TRUE(loop_.runUntil([&] { return !promise.isPending(); }, 20.0));
        return *promise.result();
    }

    void logIn() {
        std::ifstream file(device_.home.file("data/demo-account.json"));
        auto demo = nlohmann::json::parse(file);
        ServiceTestSigner signer(service_.consumerKey(), service_.consumerSecret());
        auto answer = serviceCall(service_, signer, "POST", "access_token",
                                  {{"x_auth_mode", "client_auth"},
                                   {"x_auth_username", demo["email"]},
                                   {"x_auth_password", demo["password"]}});
        ASSERT_TRUE(answer && answer->status == 200);
        auto token = nlohmann::json::parse(answer->body);
        api_->setCredentialsWithToken(token["oauth_token"], token["oauth_token_secret"]);
        email_ = demo["email"];
    }

    TestPlatform device_;
    ServiceProcess service_{TB_SERVICE_BINARY, device_.home.file("data"),
                            std::vector<std::string>{"--media", "placeholder"}};
    RunLoop loop_;
    CurlHttpTransport http_{loop_};
    SystemRandomSource random_;
    SystemClock clock_;
    std::unique_ptr<AlamofireNetworkLayer> layer_;
    std::unique_ptr<API> api_;
    std::string email_;
};

TEST_F(ServiceProcessTypedLayerTest, OnboardingItemsAreAcceptedUnderTheTypedSignature) {
    auto result = await(layer_->browse().feed().onboardingItems());
    ASSERT_TRUE(result.isFulfilled()) << result.error->message;
    ASSERT_FALSE(result.value->empty());
    EXPECT_TRUE(result.value->front().artist->name);
    EXPECT_TRUE(result.value->front().playlist->isPlaylist);
}

TEST_F(ServiceProcessTypedLayerTest, AProfileEditWithTheListenersTokenStopsWorkingOnceRevoked) {
    logIn();
    auto& profile = layer_->social().myProfile();
    auto edited = await(profile.updateProfile({{"name", "Ama Sound"}, {"bio", "a b+c"}}));
    ASSERT_TRUE(edited.isFulfilled()) << edited.error->domain << " " << edited.error->message;
    EXPECT_EQ((*edited.value)->name, "Ama Sound");
    EXPECT_EQ(Artist::savedArtist(device_.context().coreDataManager())->bio, "a b+c");

    httplib::Client admin(service_.host(), service_.port());
    auto revoked = admin.Post("/admin/tokens/revoke", nlohmann::json{{"email", email_}}.dump(),
                              "application/json");
    ASSERT_TRUE(revoked && revoked->status == 200);

    auto refused = await(profile.updateProfile({{"name", "Too Late"}}));
    ASSERT_FALSE(refused.isFulfilled());
    EXPECT_EQ(refused.error->domain, ProfileEditError::kDomain);
    EXPECT_EQ(refused.error->code, ProfileEditError::invalidSignature);
}

}  // namespace
}  // namespace tb::test
