#include <fstream>

#include <nlohmann/json.hpp>

#include "api/TBServiceEnvironment.h"
#include "api/TBXAuthClientManager.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

// Live before any choice; the signed clients are made on the host chosen by then.
TEST(TBServiceEnvironmentTest, PicksTheHostOfTheKeyStoreAndIsLiveBeforeAnyChoice) {
    test::TestPlatform platform;
    auto& environment = platform.context().environment();
    EXPECT_EQ(environment.baseURL(), "https://api.tunebrook.test/v1/");
    environment.useDev();
    auto& manager = TBXAuthClientManager::sharedManager();
    EXPECT_EQ(manager.client().baseURL(), "http://127.0.0.1:8081/v1/");
    EXPECT_EQ(manager.jsonClient().baseURL(), "http://127.0.0.1:8081/v1/");
    environment.useProd();
    EXPECT_EQ(environment.baseURL(), "https://api.tunebrook.test/v1/");
}

TEST(TBServiceEnvironmentTest, AHostWithoutItsSlashGetsOne) {
    test::TestPlatform scratch;
    auto keys = nlohmann::json::parse(test::testKeysJson());
    keys["wsUrlDev"] = "http://127.0.0.1:9/api";
    const std::string path = scratch.home.path() + "/slashless.json";
    std::ofstream(path) << keys.dump();
    AppOptions options;
    options.keysFile = path;
    test::TestPlatform platform(options);
    auto& environment = platform.context().environment();
    environment.useDev();
    EXPECT_EQ(environment.baseURL(), "http://127.0.0.1:9/api/");
}

}  // namespace
}  // namespace tb
