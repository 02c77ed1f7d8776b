#include <chrono>
#include <filesystem>
#include <memory>

#include "KeychainStoreContract.h"
#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/linux/FileKeychainStore.h"
#include "platform/linux/MakeKeychainStore.h"
#include "platform/linux/SecretServiceKeychainStore.h"
#include "support/FileContents.h"
#include "support/PrivateSessionBus.h"
#include "support/Recorders.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

constexpr const char* kValet = "com.tunebrook.iphone.valet";
constexpr const char* kOlder = "com.tunebrook.iphone.fxkeychain";

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// One session with an unlocked keyring for all the tests of the suite: the process keeps
// its first connection to a session bus for good.
class SecretServiceKeychainStoreTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { bus = new test::PrivateSessionBus(true); }
    static void TearDownTestSuite() {
        delete bus;
        bus = nullptr;
    }
    void SetUp() override {
        if (!bus->available()) {
            GTEST_SKIP() << "no private Secret Service: " << bus->reason();
        }
    }

    static test::PrivateSessionBus* bus;
};

test::PrivateSessionBus* SecretServiceKeychainStoreTest::bus = nullptr;

TEST_F(SecretServiceKeychainStoreTest, BytesRoundTripAndOutliveTheStoreObject) {
    std::string reason;
    ASSERT_TRUE(SecretServiceKeychainStore(kValet).probe(5.0, &reason)) << reason;
    test::expectDurableKeychainStore(
        [] { return std::make_unique<SecretServiceKeychainStore>(kValet); });
}

TEST_F(SecretServiceKeychainStoreTest, IdentitiesDoNotSeeEachOthersEntries) {
    SecretServiceKeychainStore current(kValet);
    SecretServiceKeychainStore older(kOlder);
    ASSERT_TRUE(older.setData("userId", "42"));
    ASSERT_TRUE(current.removeObjectForKey("userId"));

    EXPECT_FALSE(current.dataForKey("userId"));
    EXPECT_EQ(older.dataForKey("userId"), "42");
    const auto olderKeys = older.allKeys();
    EXPECT_EQ(olderKeys, std::vector<std::string>{"userId"});
}

TEST_F(SecretServiceKeychainStoreTest, TheFactoryPicksTheSecretServiceForANewHomeAndKeepsThePick) {
    test::TempDir home;
    const auto paths = Paths::underHome(home.path());
    test::RecordingErrorReporter errors;
    std::string logged;
    auto previous = setLogSink([&](std::string_view line) { logged += std::string(line) + "\n"; });
    auto stores = makeKeychainStores(kValet, kOlder, paths, errors);
    setLogSink(previous);

    EXPECT_NE(dynamic_cast<SecretServiceKeychainStore*>(stores.current.get()), nullptr) << logged;
    EXPECT_NE(dynamic_cast<SecretServiceKeychainStore*>(stores.older.get()), nullptr);
    EXPECT_NE(logged.find("Secret Service"), std::string::npos);
    EXPECT_EQ(test::readFileText(paths.support + "/keychain/backend"), "secret-service\n");
}

TEST_F(SecretServiceKeychainStoreTest, AHomeThatBeganWithFilesKeepsThemWhenTheServiceAppears) {
    test::TempDir home;
    const auto paths = Paths::underHome(home.path());
    ASSERT_TRUE(paths.createAll());
    test::RecordingErrorReporter errors;
    ASSERT_TRUE(FileKeychainStore(kValet, paths.support, errors).setData("userId", "7"));

    auto stores = makeKeychainStores(kValet, kOlder, paths, errors);
    ASSERT_NE(dynamic_cast<FileKeychainStore*>(stores.current.get()), nullptr);
    EXPECT_EQ(stores.current->dataForKey("userId"), "7");
    // Once noted, the pick holds even when the files are gone.
    std::filesystem::remove(FileKeychainStore::pathFor(kValet, paths.support));
    auto again = makeKeychainStores(kValet, kOlder, paths, errors);
    EXPECT_NE(dynamic_cast<FileKeychainStore*>(again.current.get()), nullptr);
}

// Runs last in the suite (gtest keeps the order of declaration): it locks the keyring. Nothing may
// wait on the unlock prompt that nobody will answer.
TEST_F(SecretServiceKeychainStoreTest, LockedKeyringIsUnavailableAndNeverBlocks) {
    if (!test::programExists("gdbus")) {
        GTEST_SKIP() << "gdbus is not installed";
    }
    SecretServiceKeychainStore store(kValet, 1.0);
    ASSERT_TRUE(store.setData("token", "before the lock"));
    ASSERT_TRUE(
        bus->run("gdbus call --session --dest org.freedesktop.secrets "
                 "--object-path /org/freedesktop/secrets "
                 "--method org.freedesktop.Secret.Service.Lock "
                 "\"['/org/freedesktop/secrets/aliases/default']\""));

    const auto start = std::chrono::steady_clock::now();
    std::string reason;
    EXPECT_FALSE(store.probe(1.0, &reason));
    EXPECT_NE(reason.find("locked"), std::string::npos) << reason;
    EXPECT_FALSE(store.dataForKey("token").has_value());
    EXPECT_FALSE(store.setData("token", "after the lock"));
    EXPECT_LT(secondsSince(start), 10.0);
}

TEST(SecretServiceProbeTest, ASessionWithoutAnUnlockedKeyringIsUnavailable) {
    test::PrivateSessionBus bareBus(false);
    if (!bareBus.available()) {
        GTEST_SKIP() << "no private session bus: " << bareBus.reason();
    }
    SecretServiceKeychainStore store(kValet);
    const auto start = std::chrono::steady_clock::now();
    std::string reason;
    EXPECT_FALSE(store.probe(2.0, &reason));
    EXPECT_FALSE(reason.empty());
    EXPECT_LT(secondsSince(start), 10.0);
}

}  // namespace
}  // namespace tb
