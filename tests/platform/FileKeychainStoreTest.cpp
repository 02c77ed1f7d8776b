#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include <sys/stat.h>

#include "KeychainStoreContract.h"
#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/linux/FileKeychainStore.h"
#include "platform/linux/MakeKeychainStore.h"
#include "support/FileContents.h"
#include "support/Recorders.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

namespace fs = std::filesystem;

constexpr const char* kValet = "com.tunebrook.iphone.valet";
constexpr const char* kOlder = "com.tunebrook.iphone.fxkeychain";

unsigned modeOf(const std::string& path) {
    struct stat info {};
    ::stat(path.c_str(), &info);
    return info.st_mode & 0777;
}

class FileKeychainStoreTest : public ::testing::Test {
  protected:
    FileKeychainStoreTest() { fs::create_directories(support); }

    FileKeychainStore open(const std::string& identity = kValet) {
        return FileKeychainStore(identity, support, errors);
    }

    test::TempDir home;
    std::string support = home.path() + "/support";
    test::RecordingErrorReporter errors;
};

TEST_F(FileKeychainStoreTest, EntriesSurviveNewInstancesInAFileOnlyTheUserCanRead) {
    test::expectDurableKeychainStore(
        [&] { return std::make_unique<FileKeychainStore>(kValet, support, errors); });

    const std::string path = open().path();
    EXPECT_EQ(path, support + "/keychain/" + kValet + ".json");
    EXPECT_EQ(modeOf(path), 0600u);
    EXPECT_EQ(modeOf(support + "/keychain"), 0700u);
    EXPECT_TRUE(errors.records.empty());
}

TEST_F(FileKeychainStoreTest,
       IdentitiesAreSeparateHostileOnesStayInTheFolderAndFailedWritesChangeNothing) {
    auto current = open(kValet);
    auto older = open(kOlder);
    auto hostile = open("../../escaped");
    ASSERT_TRUE(current.setData("token", "new"));
    ASSERT_TRUE(older.setData("token", "old"));
    ASSERT_TRUE(hostile.setData("token", "evil"));

    EXPECT_EQ(open(kValet).dataForKey("token"), "new");
    EXPECT_EQ(open(kOlder).dataForKey("token"), "old");
    EXPECT_EQ(open("../../escaped").dataForKey("token"), "evil");
    EXPECT_EQ(fs::path(hostile.path()).parent_path(), fs::path(support + "/keychain"));
    EXPECT_EQ(test::folderEntries(home.path()), std::vector<std::string>{"support"});
    EXPECT_EQ(test::folderEntries(support), std::vector<std::string>{"keychain"});

    auto store = open();
    ASSERT_TRUE(store.setData("token", "kept"));
    fs::remove_all(support + "/keychain");

    EXPECT_FALSE(store.setData("token", "lost"));
    EXPECT_FALSE(store.setData("other", "lost"));
    EXPECT_EQ(store.dataForKey("token"), "kept");
    EXPECT_FALSE(store.dataForKey("other"));
}

TEST_F(FileKeychainStoreTest, ABrokenFileIsSetAsideReportedAndTheStoreStartsEmpty) {
    for (const std::string contents :
         {"not json", "{\"entries\": {\"token\": \"%%%\"}}", "{\"entries\": []}"}) {
        SCOPED_TRACE(contents);
        errors.records.clear();
        fs::create_directories(support + "/keychain");
        const std::string path = support + "/keychain/" + kValet + ".json";
        ASSERT_TRUE(test::writeFileText(path, contents));

        auto store = open();
        EXPECT_TRUE(store.allKeys().empty());
        ASSERT_EQ(errors.records.size(), 1u);
        EXPECT_EQ(errors.records[0].error.domain, "Keychain");
        EXPECT_EQ(errors.records[0].error.userInfo.at("path"), path);
        EXPECT_EQ(test::readFileText(errors.records[0].error.userInfo.at("movedTo")), contents);
        EXPECT_TRUE(store.setData("token", "fresh"));
    }
}

// Sets or clears an environment variable for the life of the object.
class ScopedEnvironment {
  public:
    ScopedEnvironment(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            old_ = old;
        }
        value ? ::setenv(name, value, 1) : ::unsetenv(name);
    }
    ~ScopedEnvironment() { old_ ? ::setenv(name_, old_->c_str(), 1) : ::unsetenv(name_); }

  private:
    const char* name_;
    std::optional<std::string> old_;
};

TEST_F(FileKeychainStoreTest, WithoutASessionBusTheFilesArePickedKeptAndSaidSo) {
    ScopedEnvironment noBus("DBUS_SESSION_BUS_ADDRESS", nullptr);
    const auto paths = Paths::underHome(home.path());
    std::string logged;
    auto previous = setLogSink([&](std::string_view line) { logged += std::string(line) + "\n"; });
    auto stores = makeKeychainStores(kValet, kOlder, paths, errors);
    setLogSink(previous);

    ASSERT_NE(dynamic_cast<FileKeychainStore*>(stores.current.get()), nullptr);
    ASSERT_NE(dynamic_cast<FileKeychainStore*>(stores.older.get()), nullptr);
    EXPECT_NE(logged.find(kValet), std::string::npos);
    EXPECT_NE(logged.find("file"), std::string::npos);
    EXPECT_TRUE(stores.current->setData("crashReportingSDKPicked", "{\"value\":true}"));
    EXPECT_EQ(test::readFileText(paths.support + "/keychain/backend"), "file\n");
}

// A home whose keychain is in the desktop's Secret Service, started from a session without
// the desktop's bus: nothing may start a second keychain that the next desktop run ignores.
TEST_F(FileKeychainStoreTest, AKeychainKeptInTheSecretServiceIsNeverForkedIntoFiles) {
    ScopedEnvironment noBus("DBUS_SESSION_BUS_ADDRESS", nullptr);
    const auto paths = Paths::underHome(home.path());
    fs::create_directories(paths.support + "/keychain");
    std::ofstream(paths.support + "/keychain/backend") << "secret-service\n";

    auto stores = makeKeychainStores(kValet, kOlder, paths, errors);
    ASSERT_NE(stores.current, nullptr);
    EXPECT_EQ(dynamic_cast<FileKeychainStore*>(stores.current.get()), nullptr);
    EXPECT_TRUE(stores.current->setData("crashReportingSDKPicked", "{\"value\":true}"));
    EXPECT_FALSE(fs::exists(FileKeychainStore::pathFor(kValet, paths.support)));
    EXPECT_EQ(test::readFileText(paths.support + "/keychain/backend"), "secret-service\n");
}

}  // namespace
}  // namespace tb
