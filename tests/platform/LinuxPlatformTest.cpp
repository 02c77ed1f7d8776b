#include <filesystem>
#include <sstream>

#include "LoopbackListener.h"
#include "app/AppContext.h"
#include "platform/ErrorReporter.h"
#include "platform/ExternalSdks.h"
#include "platform/KeychainStore.h"
#include "platform/RandomSource.h"
#include "platform/Reachability.h"
#include "platform/RunLoop.h"
#include "platform/UIHost.h"
#include "platform/UserDefaults.h"
#include "platform/linux/LinuxPlatform.h"
#include "support/FileContents.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

namespace fs = std::filesystem;

class LinuxPlatformTest : public ::testing::Test {
  protected:
    std::unique_ptr<LinuxPlatform> make(const std::string& url = "") {
        std::string reason;
        auto platform = LinuxPlatform::create(
            LinuxPlatformOptions{Paths::underHome(home.path()), url, &terminal, true}, &reason);
        EXPECT_TRUE(platform) << reason;
        return platform;
    }

    test::TempDir home;
    std::ostringstream terminal;
};

TEST_F(LinuxPlatformTest, EveryPortIsRealAndKeepsItsStateUnderTheGivenFolders) {
    {
        auto platform = make();
        ASSERT_TRUE(platform);
        const AppPorts ports = platform->ports();
        EXPECT_TRUE(ports.mainQueue && ports.clock && ports.defaults && ports.keychain &&
                    ports.olderKeychain && ports.http && ports.errorReporter &&
                    ports.reachability && ports.uiHost && ports.random && ports.externalSdks);
        EXPECT_NE(ports.keychain, ports.olderKeychain);
        AppOptions options;
        options.paths = platform->paths();
        AppContext context(ports, options);
        EXPECT_EQ(&context.keychain(), ports.keychain);

        ports.defaults->standard().setString("liveEnvironment", "0");
        EXPECT_TRUE(ports.keychain->setData("token", "new"));
        EXPECT_TRUE(ports.olderKeychain->setData("token", "old"));
        ports.errorReporter->startReporter("Bugsnag", "key");
        ports.externalSdks->start("FIRApp.configure", {});
        ports.uiHost->showToast("hello", UIHost::ToastImage::None);
        EXPECT_LT(ports.random->uniform(100), 100u);
    }

    const std::string support = home.path() + "/support";
    for (const auto& folder : {"documents", "caches", "config", "support"}) {
        EXPECT_TRUE(fs::is_directory(home.path() + "/" + folder)) << folder;
    }
    EXPECT_TRUE(fs::exists(home.path() + "/config/standard.json"))
        << "unwritten defaults were lost";
    EXPECT_TRUE(fs::exists(support + "/keychain/com.tunebrook.iphone.valet.json"));
    EXPECT_TRUE(fs::exists(support + "/keychain/com.tunebrook.iphone.fxkeychain.json"));
    EXPECT_NE(test::readFileText(support + "/errors.jsonl").find("Bugsnag"), std::string::npos);
    EXPECT_NE(test::readFileText(support + "/sdks.jsonl").find("FIRApp.configure"),
              std::string::npos);
    EXPECT_EQ(terminal.str(), "[toast] hello\n");

    auto again = make();
    EXPECT_EQ(again->ports().defaults->standard().stringForKey("liveEnvironment"), "0");
    EXPECT_EQ(again->ports().keychain->dataForKey("token"), "new");
    EXPECT_EQ(again->ports().olderKeychain->dataForKey("token"), "old");
}

TEST_F(LinuxPlatformTest, ReachabilityWatchesTheServiceHostAndWithoutOneCountsAsReachable) {
    auto alone = make();
    auto& reachability = *alone->ports().reachability;
    int told = 0;
    reachability.startNotifier([&] { ++told; }, [] { ADD_FAILURE() << "unreachable"; });
    alone->runLoop().runUntil([&] { return told > 0; }, 2.0);
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(reachability.isReachable());
    EXPECT_TRUE(reachability.isReachableViaWiFi());
    alone.reset();  // one platform at a time keeps the home

    auto platform = make("http://127.0.0.1:" + std::to_string(test::closedLoopbackPort()) + "/v1/");
    bool unreachable = false;
    platform->ports().reachability->startNotifier([] {}, [&] { unreachable = true; });
    EXPECT_TRUE(platform->runLoop().runUntil([&] { return unreachable; }, 5.0));
    EXPECT_FALSE(platform->ports().reachability->isReachable());
}

TEST_F(LinuxPlatformTest, RefusesFoldersItCannotMakeAndURLsWithoutAHost) {
    ASSERT_TRUE(test::writeFileText(home.file("file"), "x"));
    std::string reason;
    EXPECT_FALSE(
        LinuxPlatform::create({Paths::underHome(home.file("file")), "", &terminal, true}, &reason));
    EXPECT_FALSE(reason.empty());

    reason.clear();
    EXPECT_FALSE(
        LinuxPlatform::create({Paths::underHome(home.path()), "no url", &terminal, true}, &reason));
    EXPECT_NE(reason.find("no url"), std::string::npos);
}

}  // namespace
}  // namespace tb
