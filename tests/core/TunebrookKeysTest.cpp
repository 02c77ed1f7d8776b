#include <filesystem>
#include <fstream>

#include "core/TBConstants.h"
#include "core/TunebrookKeys.h"
#include "support/TempDir.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

class TunebrookKeysTest : public ::testing::Test {
  protected:
    std::string writeFile(const std::string& content) {
        const auto path = dir.file("keys.json");
        std::ofstream(path, std::ios::trunc) << content;
        return path;
    }

    test::TempDir dir;
};

TEST_F(TunebrookKeysTest, ACompleteFileAnswersEveryRole) {
    const TunebrookKeys keys(writeFile(test::testKeysJson()));

    ASSERT_FALSE(keys.error());
    for (const auto& role : TunebrookKeys::roles()) {
        EXPECT_FALSE(keys.value(role).empty()) << role;
    }
    EXPECT_EQ(keys.tunebrookConsumerKey(), "test-tunebrookConsumerKey");
    EXPECT_EQ(keys.fyberAppId(), "test-fyberAppId");
    EXPECT_EQ(keys.wsUrlLive(), "https://api.tunebrook.test/v1/");
}

TEST_F(TunebrookKeysTest, AMissingFileIsAnErrorNamingIt) {
    const auto path = dir.file("absent.json");
    const TunebrookKeys keys(path);

    ASSERT_TRUE(keys.error());
    EXPECT_EQ(keys.error()->domain, TunebrookKeys::kErrorDomain);
    EXPECT_EQ(keys.error()->code, TunebrookKeys::kFileUnreadable);
    EXPECT_NE(keys.error()->message.find(path), std::string::npos);
}

TEST_F(TunebrookKeysTest, MalformedContentIsAnError) {
    const std::vector<std::string> contents = {"", "{\"wsUrlLive\": ", "[\"tunebrookConsumerKey\"]",
                                               "\"text\"",
                                               std::string(5000, '[') + std::string(5000, ']')};
    for (const auto& content : contents) {
        const TunebrookKeys keys(writeFile(content));
        ASSERT_TRUE(keys.error()) << content.substr(0, 30);
        EXPECT_EQ(keys.error()->code, TunebrookKeys::kFileMalformed) << content.substr(0, 30);
    }
}

TEST_F(TunebrookKeysTest, AMissingEmptyOrInvalidRoleIsAnErrorNamingTheRoleAndTheFile) {
    struct Case {
        std::string from, to;  // replaced in the complete file
        int code;
        const char* roles;
    };
    const Case cases[] = {
        {"\"bugsnagKey\"", "\"bugsnagKey-gone\"", TunebrookKeys::kRoleMissing, "\"bugsnagKey\""},
        {"test-zendeskUrl", "", TunebrookKeys::kRoleMissing, "\"zendeskUrl\""},
        {"\"test-comscoreId\"", "42", TunebrookKeys::kRoleInvalid, "\"comscoreId\""},
        {"http://127.0.0.1:8081/v1/", "127.0.0.1:8081/v1/", TunebrookKeys::kRoleInvalid,
         "\"wsUrlDev\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.roles);
        auto json = test::testKeysJson();
        json.replace(json.find(c.from), c.from.size(), c.to);
        const auto path = writeFile(json);
        const TunebrookKeys keys(path);
        ASSERT_TRUE(keys.error());
        EXPECT_EQ(keys.error()->code, c.code);
        EXPECT_EQ(keys.error()->userInfo.at("roles"), c.roles);
        EXPECT_NE(keys.error()->message.find(c.roles), std::string::npos);
        EXPECT_NE(keys.error()->message.find(path), std::string::npos);
    }
}

TEST_F(TunebrookKeysTest, EveryMissingRoleIsNamed) {
    const TunebrookKeys keys(writeFile(R"({"tunebrookConsumerKey": "k"})"));

    ASSERT_TRUE(keys.error());
    for (const auto& role : TunebrookKeys::roles()) {
        const bool named = keys.error()->message.find("\"" + role + "\"") != std::string::npos;
        EXPECT_EQ(named, role != "tunebrookConsumerKey") << role;
    }
}

TEST_F(TunebrookKeysTest, TheFileComesFromTheOptionsOrTheConfigFolderAndTheContextKeepsIt) {
    AppOptions options;
    options.paths = Paths::underHome(dir.path());
    EXPECT_EQ(TunebrookKeys::pathFor(options), dir.path() + "/config/keys.json");
    options.keysFile = "/elsewhere/k.json";
    EXPECT_EQ(TunebrookKeys::pathFor(options), "/elsewhere/k.json");

    test::TestPlatform platform;
    const auto& keys = platform.context().keys();
    ASSERT_FALSE(keys.error());
    std::filesystem::remove(keys.path());

    EXPECT_EQ(&platform.context().keys(), &keys);
    EXPECT_EQ(keys.bugsnagKey(), "test-bugsnagKey");
}

// The site pages and the host reachability watches are the service's web host: the one the
// options name, never the API host beside it; without one, the live API address's origin.
TEST_F(TunebrookKeysTest, TheWebHostIsTheNamedOneElseTheOriginOfTheLiveService) {
    auto json = test::testKeysJson();
    json.replace(json.find("https://api.tunebrook.test/v1/"), 30,
                 "http://user@127.0.0.1:8080/api/v1?x=1");
    const TunebrookKeys keys(writeFile(json));
    ASSERT_FALSE(keys.error());
    AppOptions options;
    EXPECT_EQ(TBLinks::webHostFor(options, keys), "http://127.0.0.1:8080");
    options.webURL = "https://www.tunebrook.test/some/page";
    EXPECT_EQ(TBLinks::webHostFor(options, keys), "https://www.tunebrook.test");

    const TBLinks links(TBLinks::webHostFor(options, keys), keys.appleAppIdWithoutId());
    EXPECT_EQ(links.dashboard, "https://www.tunebrook.test/dashboard");
    EXPECT_EQ(links.rating, links.appStore + "?action=write-review");
    EXPECT_NE(links.appStore.find("test-appleAppIdWithoutId"), std::string::npos);
}

TEST_F(TunebrookKeysTest, TheAppsLinksAreOnTheWebHostItWasGiven) {
    AppOptions options;
    options.webURL = "https://www.tunebrook.test";
    test::TestPlatform platform(options);
    EXPECT_EQ(TBConstants::TBLinks().dashboard, "https://www.tunebrook.test/dashboard");
    EXPECT_EQ(&TBConstants::TBLinks(), &platform.context().links());
}

}  // namespace
}  // namespace tb
