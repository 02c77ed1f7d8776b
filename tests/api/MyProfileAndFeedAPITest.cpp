#include <nlohmann/json.hpp>

#include "api/APIError.h"
#include "api/AlamofireNetworkLayer.h"
#include "api/BrowseAPI.h"
#include "api/ProfileEditError.h"
#include "api/SocialAPI.h"
#include "api/TBDataManager.h"
#include "model/Item.h"
#include "platform/Base64.h"
#include "support/TestPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::Pair;

class MyProfileAPITest : public ::testing::Test {
  protected:
    MyProfileAPITest() {
        platform.context().dataManager().startup();
        auto saved = std::make_shared<Artist>();
        saved->artistId = "7";
        saved->name = "Ama";
        saved->bio = "Coast";
        saved->genre = "rap";
        saved->cacheObject(store());
    }

    TBCoreDataManager& store() { return platform.context().coreDataManager(); }

    std::optional<PromiseResult<ArtistPtr>> update(const nlohmann::json& fields) {
        auto promise = platform.context().networkLayer().social().myProfile().updateProfile(fields);
        platform.queue.runUntilIdle();
        return promise.result();
    }

    test::TestPlatform platform;
};

TEST_F(MyProfileAPITest, AnEditSendsTheChangedFieldsAndSavesTheAnsweredUser) {
    Artist edited = *Artist::savedArtist(store());
    edited.name = "Ama Sound";
    edited.genre.reset();
    edited.url = "https://ama.example.com";
    platform.http.on("PUT", "user/profile", 200,
                     R"({"user":{"id":"7","name":"Ama Sound","url_slug":"ama"}})");

    const auto result = update(MyProfileAPI::changedFields(*Artist::savedArtist(store()), edited,
                                                           std::string("\xFF\xD8")));

    ASSERT_EQ(platform.http.count(), 1u);
    EXPECT_THAT(test::parseFormBody(platform.http.request(0).body),
                ::testing::UnorderedElementsAre(Pair("name", "Ama Sound"), Pair("genre", ""),
                                                Pair("url", "https://ama.example.com"),
                                                Pair("image", base64Encode("\xFF\xD8"))));
    ASSERT_TRUE(result && result->isFulfilled());
    EXPECT_EQ((*result->value)->name, "Ama Sound");
    EXPECT_EQ(Artist::savedArtist(store())->name, "Ama Sound");
    EXPECT_EQ(Artist::savedArtist(store())->urlSlug, "ama");
}

struct Failure {
    const char* name;
    int status;
    std::string body;
    Error expected;
};

class MyProfileFailureTest : public MyProfileAPITest,
                             public ::testing::WithParamInterface<Failure> {};

TEST_P(MyProfileFailureTest, AFailedEditBecomesWhatTheScreenShowsAndKeepsTheSavedUser) {
    platform.http.on("PUT", "user/profile", GetParam().status, GetParam().body);
    const auto result = update({{"name", "Ama Sound"}});
    ASSERT_TRUE(result && !result->isFulfilled());
    EXPECT_EQ(*result->error, GetParam().expected);
    EXPECT_EQ(Artist::savedArtist(store())->name, "Ama");
}

INSTANTIATE_TEST_SUITE_P(
    Answers,
    MyProfileFailureTest,
    ::testing::Values(
        Failure{"FieldErrors", 422,
                R"({"message":"The profile was not updated","errors":{"name":["Too long"],)"
                R"("bio":["Way too long","Really"]}})",
                ProfileEditError::makeErrorWithMessage("The profile was not updated",
                                                       "Way too long\nReally\nToo long")},
        Failure{"MessageOnly", 400, R"({"message":"Nothing to update"})",
                ProfileEditError::makeErrorWithMessage("", "Nothing to update")},
        Failure{"Unauthorized", 401, R"({"message":"Invalid token","errorcode":1006})",
                ProfileEditError::makeInvalidSignature()},
        Failure{"NotJson", 502, "<html>bad gateway</html>", ProfileEditError::makeGeneric()},
        Failure{"UnreadableUser", 200, R"({"user":"nobody"})",
                APIError::makeGeneric("[Artist] Couldn't parse current user data")}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(FeedAPITest, OnboardingItemsAreArtistsWithTheirPlaylistsLeavingOutTheUnreadable) {
    test::TestPlatform platform;
    platform.http.on("GET", "onboarding-items", 200, R"({"results":[
        {"artist":{"id":"3","name":"Kofi"},"playlist":{"id":"40","title":"Kofi's picks"}},
        {"artist":{"id":"4","name":"Sade"},"playlist":{"title":"no id"}},
        {"artist":"none","playlist":{"id":"41","title":"Orphan"}},
        {"artist":{"id":"5","name":"Ama"},"playlist":{"id":"42","title":"Ama's picks"}}]})");
    auto promise = platform.context().networkLayer().browse().feed().onboardingItems();
    platform.queue.runUntilIdle();

    ASSERT_TRUE(promise.result() && promise.result()->isFulfilled());
    const auto artists = *promise.result()->value;
    ASSERT_EQ(artists.size(), 2u);
    EXPECT_EQ(artists[0].artist->name, "Kofi");
    EXPECT_EQ(artists[0].playlist->title, "Kofi's picks");
    EXPECT_EQ(artists[1].playlist->itemID, "42");
    EXPECT_THAT(findHeader(platform.http.request(0).headers, "Authorization"),
                ::testing::Optional(::testing::StartsWith("OAuth ")));
}

}  // namespace
}  // namespace tb
