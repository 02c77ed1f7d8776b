#include "support/ServiceTestSigner.h"
#include "support/TempDir.h"
#include "tunebrook-service/auth/NonceCache.h"
#include "tunebrook-service/auth/RequestAuthenticator.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/state/AccountStore.h"
#include "tunebrook-service/state/Schema.h"
#include "tunebrook-service/state/TokenStore.h"

#include <gtest/gtest.h>

namespace tb::service {
namespace {

constexpr double kNow = 1795000000.0;
const char* const kHost = "127.0.0.1:9000";

class RequestAuthenticatorTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        db_ = Database::open(dir_.file("auth.sqlite"), error);
        ASSERT_TRUE(db_ && Schema::create(*db_, error)) << error;
        tokens_ = std::make_unique<TokenStore>(*db_);
        AccountStore accounts(*db_);
        account_ =
            accounts.create({"Listener", std::string("l@example.com"), {}, "", ""}, kNow)->id;
        authenticator_ =
            std::make_unique<RequestAuthenticator>("ck", "c+s/ecret", *tokens_, nonces_, 600);
    }

    // A signed request as a client would send it, at the given time.
    AuthRequest request(const std::string& path,
                        const test::ServiceTestSigner::Params& params,
                        double at,
                        bool serializer = true,
                        const std::string& nonce = test::ServiceTestSigner::freshNonce()) {
        AuthRequest out;
        out.method = "POST";
        out.host = kHost;
        out.rawPath = "/v1/" + path;
        for (const auto& [key, value] : params) {
            out.bodyParams.push_back({key, value, true});
        }
        out.urlEncodedBody = !params.empty();
        std::string url = std::string("http://") + kHost + out.rawPath;
        std::string timestamp = std::to_string(static_cast<int64_t>(at));
        out.authorization = serializer
                                ? signer_.serializerHeader("POST", url, params, timestamp, nonce)
                                : signer_.signerHeader("POST", url, params, timestamp, nonce);
        return out;
    }

    test::TempDir dir_;
    std::unique_ptr<Database> db_;
    std::unique_ptr<TokenStore> tokens_;
    NonceCache nonces_{600};
    std::unique_ptr<RequestAuthenticator> authenticator_;
    test::ServiceTestSigner signer_{"ck", "c+s/ecret"};
    int64_t account_ = 0;
};

TEST_F(RequestAuthenticatorTest, AcceptsBothSchemesWithAndWithoutToken) {
    auto consumerOnly =
        authenticator_->authenticate(request("access_token", {{"a", "1"}}, kNow), kNow);
    EXPECT_TRUE(consumerOnly.ok);
    EXPECT_EQ(consumerOnly.scheme, SignatureScheme::serializer);
    EXPECT_FALSE(consumerOnly.accountId);

    TokenRecord token = tokens_->issue(account_, kNow, 3600);
    signer_.setToken(token.token, token.secret);
    auto withToken =
        authenticator_->authenticate(request("user", {{"b", "x y+z"}}, kNow, false), kNow);
    EXPECT_TRUE(withToken.ok) << withToken.message;
    EXPECT_EQ(withToken.scheme, SignatureScheme::signer);
    EXPECT_EQ(withToken.accountId, account_);
}

TEST_F(RequestAuthenticatorTest, ToleratesTheRoundedUpTimestampButNotAStaleOneOrAReplayedNonce) {
    // The serializer's timestamps run up to 128 seconds ahead of the clock.
    EXPECT_TRUE(authenticator_->authenticate(request("featured", {}, kNow + 127), kNow).ok);
    auto stale = authenticator_->authenticate(request("featured", {}, kNow - 601), kNow);
    EXPECT_FALSE(stale.ok);
    EXPECT_EQ(stale.errorCode, kExpiredTimestamp);
    // The client recognises this case by these words.
    EXPECT_NE(stale.message.find("expired timestamp"), std::string::npos);

    AuthRequest first = request("featured", {}, kNow, true, "31337");
    EXPECT_TRUE(authenticator_->authenticate(first, kNow).ok);
    auto again = authenticator_->authenticate(first, kNow + 1);
    EXPECT_FALSE(again.ok);
    EXPECT_EQ(again.errorCode, kNonceReused);
}

TEST_F(RequestAuthenticatorTest,
       RefusesBadTokensForeignConsumersTamperedBodiesAndMissingHeadersWithTheirCodes) {
    signer_.setToken("nosuchtoken", "secret");
    auto unknown = authenticator_->authenticate(request("user", {}, kNow), kNow);
    EXPECT_EQ(unknown.status, 401);
    EXPECT_EQ(unknown.errorCode, kInvalidToken);

    TokenRecord token = tokens_->issue(account_, kNow, 3600);
    signer_.setToken(token.token, token.secret);
    EXPECT_TRUE(authenticator_->authenticate(request("user", {}, kNow), kNow).ok);
    EXPECT_EQ(tokens_->expireAccount(account_, kNow), 1);
    auto expired = authenticator_->authenticate(request("user", {}, kNow), kNow);
    EXPECT_EQ(expired.errorCode, kExpiredToken);

    signer_.clearToken();
    test::ServiceTestSigner stranger("other", "c+s/ecret");
    AuthRequest foreign = request("featured", {}, kNow);
    foreign.authorization =
        stranger.serializerHeader("POST", std::string("http://") + kHost + "/v1/featured", {},
                                  std::to_string(int64_t(kNow)), "5");
    EXPECT_EQ(authenticator_->authenticate(foreign, kNow).errorCode, kUnknownConsumer);

    AuthRequest tampered = request("user/downloads", {{"music_id", "1"}}, kNow);
    tampered.bodyParams[0].value = "2";
    EXPECT_EQ(authenticator_->authenticate(tampered, kNow).errorCode, kInvalidSignature);

    AuthRequest otherHost = request("featured", {}, kNow);
    otherHost.host = "localhost:9000";
    EXPECT_EQ(authenticator_->authenticate(otherHost, kNow).errorCode, kInvalidSignature);

    AuthRequest bare = request("featured", {}, kNow);
    bare.authorization.clear();
    EXPECT_EQ(authenticator_->authenticate(bare, kNow).errorCode, kMissingAuthorization);
}

TEST(NonceCacheTest, ForgetsNoncesOnceTheirTimestampLeavesTheWindow) {
    NonceCache cache(600);
    EXPECT_TRUE(cache.remember("a", 1000, 1000));
    EXPECT_FALSE(cache.remember("a", 1000, 1500));
    EXPECT_TRUE(cache.remember("b", 1700, 1700));
    EXPECT_TRUE(cache.remember("a", 1000, 1601 + 100));
    EXPECT_EQ(cache.size(), 2u);
}

TEST(NonceCacheTest, ANonceKeptInTheDatabaseOutlivesARestartAndTheCacheStaysWithinItsCapacity) {
    test::TempDir dir;
    std::string error;
    auto db = Database::open(dir.file("service.sqlite"), error);
    ASSERT_TRUE(db && Schema::create(*db, error)) << error;
    {
        NonceCache before(600);
        before.keepIn(*db, 1000);
        EXPECT_TRUE(before.remember("a", 1000, 1000));
        EXPECT_TRUE(before.remember("b", 1300, 1300));
    }
    NonceCache after(600);
    after.keepIn(*db, 1650);
    EXPECT_FALSE(after.remember("b", 1300, 1650));
    EXPECT_TRUE(after.remember("a", 1000, 1650));  // its timestamp left the window

    NonceCache cache(600, 3);
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(cache.remember("n" + std::to_string(i), 1000 + i, 1000));
    }
    EXPECT_EQ(cache.size(), 3u);
}

}  // namespace
}  // namespace tb::service
