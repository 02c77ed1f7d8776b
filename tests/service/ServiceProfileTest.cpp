#include "service/ServiceFixture.h"
#include "tunebrook-service/catalogue/Vocabulary.h"
#include "tunebrook-service/core/Crypto.h"
#include "tunebrook-service/http/ErrorCodes.h"

namespace tb::test {
namespace {

using Scheme = ServiceFixture::Scheme;
using tb::service::Crypto;

const std::string kJpegBytes = std::string("\xFF\xD8\xFF\xE0", 4) + "a tiny picture";

nlohmann::json adminJson(const std::string& body) {
    return nlohmann::json::parse(body, nullptr, false);
}

class ServiceProfileTest : public ServiceFixture {
  protected:
    Answer edit(const ServiceTestSigner::Params& params) {
        return call("PUT", "user/profile", params, Scheme::signer);
    }
};

TEST_F(ServiceProfileTest, AnEditChangesThePublicFieldsAndAnswersTheUserRecord) {
    loginDemo();
    const std::string genre = tb::service::Vocabulary::genres().front();
    auto answer = edit({{"name", "Ama Sound"},
                        {"bio", "From the coast \xc3\xa9"},
                        {"url", "https://ama.example.com"},
                        {"genre", genre},
                        {"image", Crypto::base64(kJpegBytes)}});
    ASSERT_EQ(answer.status, 200) << answer.body;
    const auto& user = answer.json["user"];
    EXPECT_EQ(user["name"], "Ama Sound");
    EXPECT_EQ(user["genre"], genre);
    EXPECT_TRUE(user["favorite_music"].is_array());

    auto record = call("GET", "user");
    EXPECT_EQ(record.json["name"], "Ama Sound");
    EXPECT_EQ(record.json["bio"], "From the coast \xc3\xa9");
    EXPECT_EQ(record.json["url"], "https://ama.example.com");
    const std::string image = record.json["image"];
    auto picture = raw("GET", image.substr(image.find("/media/")));
    EXPECT_EQ(picture.status, 200);
    EXPECT_EQ(picture.body, kJpegBytes);

    auto report = adminJson(raw("GET", "/admin/report?kind=profile_edit").body);
    ASSERT_EQ(report["events"].size(), 1u);
    EXPECT_EQ(report["events"][0]["data"]["accepted"], true);
}

TEST_F(ServiceProfileTest, AnEditNeedsATokenAndAField) {
    EXPECT_EQ(edit({{"name", "Nobody"}}).status, 401);
    loginDemo();
    auto empty = edit({{"unknown", "x"}});
    EXPECT_EQ(empty.status, 400);
    EXPECT_EQ(empty.json["errorcode"], tb::service::kBadRequest);
}

struct RefusedField {
    const char* field;
    std::string value;
};

class ServiceProfileRefusalTest : public ServiceProfileTest,
                                  public ::testing::WithParamInterface<RefusedField> {};

TEST_P(ServiceProfileRefusalTest, AFieldThatCantBeTakenIsNamedAndNothingChanges) {
    loginDemo();
    auto before = call("GET", "user").json;
    auto answer = edit({{"label", "Changed Label"}, {GetParam().field, GetParam().value}});
    ASSERT_EQ(answer.status, 422) << answer.body;
    EXPECT_TRUE(answer.json["message"].is_string());
    ASSERT_TRUE(answer.json["errors"][GetParam().field].is_array()) << answer.body;
    EXPECT_FALSE(answer.json["errors"][GetParam().field][0].get<std::string>().empty());
    EXPECT_FALSE(answer.json["errors"].contains("label"));
    auto record = call("GET", "user");
    EXPECT_EQ(record.json["label"], before["label"]);
    EXPECT_EQ(record.json["name"], before["name"]);
}

INSTANTIATE_TEST_SUITE_P(Fields,
                         ServiceProfileRefusalTest,
                         ::testing::Values(RefusedField{"name", "   "},
                                           RefusedField{"name", std::string(51, 'a')},
                                           RefusedField{"bio", std::string(801, 'b')},
                                           RefusedField{"url", "ftp://files.example.com"},
                                           RefusedField{"genre", "not-a-genre"},
                                           RefusedField{"image", "not base64!"},
                                           RefusedField{"image_banner",
                                                        Crypto::base64("\x89PNG\r\n a png")}));

TEST_F(ServiceProfileTest, RevokedTokensAreRefusedAtOnce) {
    loginDemo();
    ASSERT_EQ(call("GET", "user").status, 200);
    auto revoked = raw("POST", "/admin/tokens/revoke", {}, R"({"email":"demo@tunebrook.test"})",
                       "application/json");
    ASSERT_EQ(revoked.status, 200);
    EXPECT_GE(adminJson(revoked.body)["revoked"], 1);

    auto refused = call("GET", "user");
    EXPECT_EQ(refused.status, 401);
    EXPECT_TRUE(refused.json["message"].is_string());
    EXPECT_EQ(refused.json["errorcode"], tb::service::kInvalidToken);
    EXPECT_EQ(raw("POST", "/admin/tokens/revoke", {}, "{}", "application/json").status, 400);
}

TEST_F(ServiceProfileTest, OnboardingOffersDistinctArtistsEachWithTheirPlaylist) {
    auto answer = call("GET", "onboarding-items", {}, Scheme::signer);
    ASSERT_EQ(answer.status, 200) << answer.body;
    const auto& results = answer.json["results"];
    ASSERT_GE(results.size(), 3u);
    std::set<std::string> artists;
    for (const auto& entry : results) {
        const std::string artist = idText(entry["artist"]["id"]);
        EXPECT_TRUE(artists.insert(artist).second);
        EXPECT_EQ(entry["playlist"]["type"], "playlist");
        EXPECT_EQ(idText(entry["playlist"]["artist"]["id"]), artist);
        EXPECT_FALSE(entry["playlist"]["tracks"].empty());
    }
}

}  // namespace
}  // namespace tb::test
