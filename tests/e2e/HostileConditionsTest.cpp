// The command line under conditions a hostile service or a damaged home brings: it answers,
// tells what went wrong, and keeps its memory bounded.

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "support/AppRun.h"
#include "support/HostileServer.h"
#include "support/TempDir.h"
#include "support/TestKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

// The sanitizers' shadow memory alone passes this bound, so their builds don't measure it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMeasuresMemory = false;
#else
constexpr bool kMeasuresMemory = true;
#endif
constexpr std::int64_t kMemoryBound = std::int64_t{64} << 20;

class HostileConditionsTest : public ::testing::Test {
  protected:
    HostileConditionsTest() { writeTestKeys(keys); }

    AppRun app(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--home", home.path(), "--keys", keys});
        return AppRun::of(TB_APP_BINARY, arguments);
    }
    std::string store() const { return home.path() + "/documents/CoreData.sqlite"; }

    TempDir home;
    TempDir elsewhere;
    std::string keys = elsewhere.file("keys.json");
};

class HostileServiceTest : public HostileConditionsTest,
                           public ::testing::WithParamInterface<HostileServer::Answer> {};

// Every answer of the service is far too large, or inflates to far too much.
TEST_P(HostileServiceTest, AnAnswerTooLargeFailsTheCommandWithinBoundedMemory) {
    HostileServer service(GetParam());
    auto pointed = nlohmann::json::parse(testKeysJson());
    pointed["wsUrlLive"] = service.url("/v1/");
    std::ofstream(keys, std::ios::trunc) << pointed.dump();

    const AppRun run = app({"trending"});
    EXPECT_EQ(run.status, 1) << run.out << run.err;
    EXPECT_THAT(run.err, HasSubstr("trending: The service's answer is larger than 4 MB"));
    EXPECT_THAT(run.out, Not(HasSubstr("Nothing here.")));
    if (kMeasuresMemory) {
        EXPECT_LT(peakChildResidentBytes(), kMemoryBound);
    }
}

INSTANTIATE_TEST_SUITE_P(Answers,
                         HostileServiceTest,
                         ::testing::Values(HostileServer::Answer::endlessBody,
                                           HostileServer::Answer::gzipBomb),
                         [](const auto& named) {
                             return std::string(named.param == HostileServer::Answer::gzipBomb
                                                    ? "GzipBomb"
                                                    : "EndlessBody");
                         });

enum class BrokenStore { folder, pipe, danglingSymlink };

std::string brokenStoreName(const ::testing::TestParamInfo<BrokenStore>& kind) {
    static const char* const kNames[] = {"Folder", "Pipe", "DanglingSymlink"};
    return kNames[static_cast<int>(kind.param)];
}

class BrokenStoreTest : public HostileConditionsTest,
                        public ::testing::WithParamInterface<BrokenStore> {};

// Every run answers, telling the store can't be read, and leaves the broken thing alone.
TEST_P(BrokenStoreTest, DebugInfoStillAnswersRunAfterRun) {
    fs::create_directories(home.path() + "/documents");
    switch (GetParam()) {
        case BrokenStore::folder:
            fs::create_directory(store());
            break;
        case BrokenStore::pipe:
            ASSERT_EQ(mkfifo(store().c_str(), 0600), 0);
            break;
        case BrokenStore::danglingSymlink:
            fs::create_symlink(elsewhere.file("outside.sqlite"), store());
            break;
    }
    for (int run = 0; run < 2; ++run) {
        const AppRun debugInfo = app({"debug-info"});
        EXPECT_EQ(debugInfo.status, 1) << debugInfo.out << debugInfo.err;
        EXPECT_THAT(debugInfo.out, HasSubstr("launch: store -> can't be read"));
        EXPECT_THAT(debugInfo.err, HasSubstr("debug-info: the export could not be written"));
    }
    EXPECT_TRUE(fs::is_symlink(store()) || fs::exists(store()));
    EXPECT_FALSE(fs::exists(elsewhere.file("outside.sqlite")));
}

INSTANTIATE_TEST_SUITE_P(Kinds,
                         BrokenStoreTest,
                         ::testing::Values(BrokenStore::folder,
                                           BrokenStore::pipe,
                                           BrokenStore::danglingSymlink),
                         brokenStoreName);

TEST_F(HostileConditionsTest, ARebuildKeepsTheBrokenStoreAndSaysWhere) {
    fs::create_directories(home.path() + "/documents");
    std::ofstream(store()) << std::string(8192, 'g');

    const AppRun run = app({"debug-info"});
    EXPECT_EQ(run.status, 0) << run.out << run.err;
    std::vector<std::string> kept;
    for (const auto& entry : fs::directory_iterator(home.path() + "/documents")) {
        if (entry.path().filename().string().find("-broken-") != std::string::npos) {
            kept.push_back(entry.path().string());
        }
    }
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(fs::file_size(kept[0]), 8192u);
    EXPECT_THAT(run.out, HasSubstr("launch: store -> rebuilt; the broken store is kept at " +
                                   kept[0] + "\n"));
    EXPECT_THAT(app({}).out, HasSubstr("launch: store -> open\n"));
}

}  // namespace
}  // namespace tb::test
