#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <thread>

#include <nlohmann/json.hpp>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/ManualQueue.h"
#include "platform/linux/FileUserDefaultsProvider.h"
#include "support/FileContents.h"
#include "support/Recorders.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

namespace fs = std::filesystem;
using test::folderEntries;
using test::readFileText;
using test::writeFileText;

class FileUserDefaultsTest : public ::testing::Test {
  protected:
    FileUserDefaultsTest() { fs::create_directories(folder); }

    std::unique_ptr<FileUserDefaultsProvider> openProvider() {
        return std::make_unique<FileUserDefaultsProvider>(folder, queue, errors);
    }

    test::TempDir home;
    std::string folder = home.path() + "/config";
    ManualQueue queue;
    test::RecordingErrorReporter errors;
};

DefaultsValue::Dictionary everyKind() {
    const std::string invalidUtf8("caf\xE9 \xC0\xAF", 7);
    DefaultsData bytes{{0x00, 0xFF, 0x10, 0x00, 0x7F}};
    return {
        {"text", "Tunebrook \xE2\x99\xAB"},
        {"empty", ""},
        {"notUtf8", invalidUtf8},
        {"yes", true},
        {"no", false},
        {"int", std::int64_t{-42}},
        {"max", std::numeric_limits<std::int64_t>::max()},
        {"min", std::numeric_limits<std::int64_t>::min()},
        {"whole double", 2.0},
        {"zero double", 0.0},
        {"fraction", 0.1},
        {"huge", 1e300},
        {"infinity", -std::numeric_limits<double>::infinity()},
        {"data", bytes},
        {"no data", DefaultsData{}},
        {"array", DefaultsValue::Array{1, "two", 3.5, DefaultsValue::Array{}, bytes}},
        {"dictionary",
         DefaultsValue::Dictionary{{"nested", DefaultsValue::Dictionary{{"deep", true}}},
                                   {"list", DefaultsValue::Array{"a"}}}},
        {"looks like a tag", DefaultsValue::Dictionary{{"$data", "not base64!"}}},
        {"empty dictionary", DefaultsValue::Dictionary{}},
    };
}

TEST_F(FileUserDefaultsTest, EveryKindOfValueSurvivesAFreshProvider) {
    const auto values = everyKind();
    {
        auto provider = openProvider();
        for (const auto& [key, value] : values) {
            provider->standard().setObject(key, value);
        }
        provider->standard().setDouble("nan", std::nan(""));
        ASSERT_TRUE(provider->standard().synchronize());
    }

    auto reopened = openProvider();
    for (const auto& [key, value] : values) {
        const auto read = reopened->standard().objectForKey(key);
        ASSERT_TRUE(read) << key;
        EXPECT_EQ(read->value.index(), value.value.index()) << key << " changed its kind";
        EXPECT_EQ(*read, value) << key;
    }
    EXPECT_TRUE(std::isnan(reopened->standard().doubleForKey("nan")));
    EXPECT_EQ(reopened->standard().allKeys().size(), values.size() + 1);
    EXPECT_TRUE(errors.records.empty());
}

TEST_F(FileUserDefaultsTest, SuitesHaveTheirOwnFilesAndHostileNamesStayInTheFolder) {
    const std::vector<std::string> names = {"group.com.tunebrook.iphone.imessageextension",
                                            "../escape",
                                            "a/b",
                                            "..",
                                            "",
                                            std::string("line\nbreak\0zero", 15),
                                            "standard",
                                            "%41",
                                            "A",
                                            std::string(400, 'x')};
    {
        auto provider = openProvider();
        provider->standard().setString("who", "standard");
        ASSERT_TRUE(provider->standard().synchronize());
        for (const auto& name : names) {
            provider->suite(name).setString("who", name);
            ASSERT_TRUE(provider->suite(name).synchronize()) << name;
        }
        EXPECT_EQ(provider->suite(names[0]).path(), folder + "/" + names[0] + ".json");
    }

    EXPECT_EQ(folderEntries(home.path()), std::vector<std::string>{"config"});
    EXPECT_EQ(folderEntries(folder).size(), names.size() + 1) << "two suites share a file";
    EXPECT_TRUE(fs::exists(folder + "/standard.json"));

    auto reopened = openProvider();
    EXPECT_EQ(reopened->standard().stringForKey("who"), "standard");
    for (const auto& name : names) {
        EXPECT_EQ(reopened->suite(name).stringForKey("who"), name);
    }
}

TEST_F(FileUserDefaultsTest, ChangesAreWrittenAboutASecondAfterTheFirstOfABurst) {
    auto provider = openProvider();
    auto& defaults = provider->standard();
    const std::string file = folder + "/standard.json";

    defaults.setInteger("count", 1);
    queue.advanceBy(0.5);
    defaults.setInteger("count", 2);
    defaults.setString("name", "x");
    EXPECT_EQ(queue.pendingTaskCount(), 1u) << "writes of one burst are not coalesced";
    EXPECT_FALSE(fs::exists(file));

    queue.advanceBy(0.5);
    auto written = nlohmann::json::parse(readFileText(file));
    EXPECT_EQ(written["count"], 2);
    EXPECT_EQ(written["name"], "x");

    defaults.removeObjectForKey("name");
    queue.advanceBy(1.0);
    EXPECT_FALSE(nlohmann::json::parse(readFileText(file)).contains("name"));
}

TEST_F(FileUserDefaultsTest, UnwrittenChangesAreSavedAtTheEndAndAFailedSynchronizeLosesNothing) {
    openProvider()->suite("s").setBool("flag", true);
    queue.advanceBy(5.0);  // the delayed write of a destroyed suite must do nothing

    EXPECT_TRUE(openProvider()->suite("s").boolForKey("flag"));

    auto provider = openProvider();
    auto& defaults = provider->standard();
    defaults.setString("token", "abc");
    fs::remove_all(folder);

    EXPECT_FALSE(defaults.synchronize());
    queue.advanceBy(2.0);
    EXPECT_EQ(defaults.stringForKey("token"), "abc");

    fs::create_directories(folder);
    EXPECT_TRUE(defaults.synchronize());
    provider.reset();
    EXPECT_EQ(openProvider()->standard().stringForKey("token"), "abc");
}

TEST_F(FileUserDefaultsTest, BrokenFilesAreSetAsideReportedAndTheSuiteStartsEmpty) {
    struct Case {
        std::string name;
        std::string contents;
    };
    const std::vector<Case> cases = {
        {"garbage", "{\"liveEnvironment\": \"1\", trailing garbage"},
        {"not an object", "[1, 2, 3]"},
        {"deep", std::string(10000, '[') + std::string(10000, ']')},
        {"empty file", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        errors.records.clear();
        auto provider = openProvider();
        const std::string file = provider->pathForSuite(c.name);
        ASSERT_TRUE(writeFileText(file, c.contents));

        auto& suite = provider->suite(c.name);
        EXPECT_TRUE(suite.allKeys().empty());
        ASSERT_EQ(errors.records.size(), 1u);
        EXPECT_EQ(errors.records[0].error.domain, "UserDefaults");
        EXPECT_EQ(errors.records[0].error.userInfo.at("path"), file);
        const std::string aside = errors.records[0].error.userInfo.at("movedTo");
        EXPECT_TRUE(aside.starts_with(file + ".corrupt-"));
        EXPECT_EQ(readFileText(aside), c.contents) << "the broken file was not kept";
        EXPECT_FALSE(fs::exists(file));

        suite.setString("fresh", "start");
        EXPECT_TRUE(suite.synchronize());
    }
}

TEST_F(FileUserDefaultsTest, AnUnreadableValueCostsThatValueAndNotTheSuite) {
    const std::string contents =
        "{\"firstLaunch\": \"1\", \"a\": null, \"b\": {\"$data\": \"***\"}, \"n\": 3}";
    auto provider = openProvider();
    const std::string file = provider->pathForSuite("kept");
    ASSERT_TRUE(writeFileText(file, contents));

    auto& suite = provider->suite("kept");
    EXPECT_EQ(suite.stringForKey("firstLaunch"), "1");
    EXPECT_EQ(suite.integerForKey("n"), 3);
    EXPECT_FALSE(suite.objectForKey("a"));
    EXPECT_FALSE(suite.objectForKey("b"));
    ASSERT_EQ(errors.records.size(), 1u);
    EXPECT_EQ(errors.records[0].error.domain, "UserDefaults");
    EXPECT_NE(errors.records[0].error.userInfo.at("reason").find("a, b"), std::string::npos);
    EXPECT_EQ(readFileText(errors.records[0].error.userInfo.at("copiedTo")), contents);
}

TEST_F(FileUserDefaultsTest, AnUnreadableFileIsSetAsideToo) {
    fs::create_directories(folder + "/standard.json");  // a folder where the file should be

    auto provider = openProvider();
    EXPECT_TRUE(provider->standard().allKeys().empty());
    ASSERT_EQ(errors.records.size(), 1u);
    EXPECT_EQ(errors.records[0].error.domain, "UserDefaults");
    provider->standard().setInteger("n", 1);
    EXPECT_TRUE(provider->standard().synchronize());
}

// Runs `body` in a child process that must end by SIGKILL; fails the test otherwise.
template <typename Body>
void runChildKilled(Body body) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        body();
        _exit(3);  // the body should have killed the process
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "status " << status;
}

TEST_F(FileUserDefaultsTest, SynchronizedValuesSurviveKillNine) {
    runChildKilled([this] {
        ManualQueue childQueue;
        test::RecordingErrorReporter childErrors;
        FileUserDefaultsProvider provider(folder, childQueue, childErrors);
        provider.standard().setString("token", "secret-token");
        provider.standard().setDouble("interstitialAdTimestamp", 0.0);
        if (!provider.standard().synchronize()) {
            _exit(2);
        }
        provider.standard().setString("unsynchronized", "lost");
        raise(SIGKILL);
    });

    auto reopened = openProvider();
    EXPECT_EQ(reopened->standard().stringForKey("token"), "secret-token");
    EXPECT_TRUE(reopened->standard().objectForKey("interstitialAdTimestamp"));
    EXPECT_FALSE(reopened->standard().objectForKey("unsynchronized"));
    EXPECT_TRUE(errors.records.empty());
}

// A child rewrites the suite as fast as it can, each generation under every key; it is
// killed at some moment of a write. The file must then hold one whole generation.
TEST_F(FileUserDefaultsTest, AKillDuringAWriteLeavesTheOldFileOrTheNewOneNeverAMix) {
    constexpr int kKeys = 40;
    for (int round = 0; round < 10; ++round) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(ready[0]);
            ManualQueue childQueue;
            test::RecordingErrorReporter childErrors;
            FileUserDefaultsProvider provider(folder, childQueue, childErrors);
            for (std::int64_t generation = 1;; ++generation) {
                for (int k = 0; k < kKeys; ++k) {
                    provider.standard().setInteger("key" + std::to_string(k), generation);
                    provider.standard().setString("pad" + std::to_string(k),
                                                  std::string(2000, 'a' + k % 26));
                }
                if (!provider.standard().synchronize()) {
                    _exit(2);
                }
                if (generation == 1) {
                    const char one = '1';
                    (void)!write(ready[1], &one, 1);
                }
            }
        }
        close(ready[1]);
        char signal = 0;
        ASSERT_EQ(read(ready[0], &signal, 1), 1);
        close(ready[0]);
        std::this_thread::sleep_for(std::chrono::milliseconds(2 + 3 * round));
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer stopped by itself: " << status;

        auto reopened = openProvider();
        ASSERT_TRUE(errors.records.empty()) << "a half-written file was left";
        const auto generation = reopened->standard().integerForKey("key0");
        EXPECT_GE(generation, 1);
        for (int k = 0; k < kKeys; ++k) {
            EXPECT_EQ(reopened->standard().integerForKey("key" + std::to_string(k)), generation);
        }
    }
}

}  // namespace
}  // namespace tb
