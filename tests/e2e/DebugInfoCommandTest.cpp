// `tunebrook debug-info` on a device that has music offline: the export lists what the
// store keeps, and the copy of the store beside it is complete.

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/AppRun.h"
#include "support/DaoTestSupport.h"
#include "support/FileContents.h"
#include "support/TempDir.h"
#include "support/TestKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class DebugInfoCommandTest : public ::testing::Test {
  protected:
    DebugInfoCommandTest() { writeTestKeys(keys); }

    AppRun app(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--home", home.path(), "--keys", keys});
        return AppRun::of(TB_APP_BINARY, arguments);
    }
    std::string documents() const { return home.path() + "/documents"; }
    std::string store() const { return documents() + "/CoreData.sqlite"; }

    // A first run makes the store; rows then go in as a download would have left them.
    void seedDevice() {
        const AppRun first = app({});
        ASSERT_EQ(first.status, 0) << first.out << first.err;
        // An album's track is not listed on its own.
        queryColumn(store(),
                    "INSERT INTO Item (itemID, type, isSong, isAlbum, isAlbumTrack, downloaded, "
                    "downloadCompleted, downloadDate) VALUES "
                    "('s1', 'song', 1, 0, 0, 1, 1, 1700000000), "
                    "('a1', 'album', 0, 1, 0, 1, 0, 1600000000), "
                    "('t1', 'song', 0, 0, 1, 1, 1, 1650000000)");
        writeBytes(documents() + "/s1.mp3", 20000);
    }

    TempDir home;
    TempDir elsewhere;
    std::string keys = elsewhere.file("keys.json");
};

TEST_F(DebugInfoCommandTest, WritesTheExportAndACompleteCopyOfTheStoreAndTellsWhere) {
    seedDevice();
    const AppRun run = app({"debug-info"});
    ASSERT_EQ(run.status, 0) << run.out << run.err;

    const std::string folder = documents() + "/debug-export";
    EXPECT_THAT(run.out,
                HasSubstr("debug-info: export.txt (text/plain) " + folder + "/export.txt\n"));
    EXPECT_THAT(run.out, HasSubstr("debug-info: CoreData.sqlite (application/x-sqlite3) " + folder +
                                   "/CoreData.sqlite\n"));

    const std::string expected =
        "id,cached,localFileURL,fileSize,type,downloadDate,downloaded,downloadCompleted\n"
        "s1,false,file://" +
        documents() +
        "/s1.mp3,20000,song,2023-11-14 22:13:20 +0000,true,true\n"
        "a1,false,file://" +
        documents() + "/a1.mp3,0,album,2020-09-13 12:26:40 +0000,true,false\n";
    EXPECT_EQ(readFileText(folder + "/export.txt"), expected);
    EXPECT_EQ(readFileText(documents() + "/export.txt"), expected);
    EXPECT_THAT(queryColumn(folder + "/CoreData.sqlite", "SELECT itemID FROM Item ORDER BY itemID"),
                ElementsAre("a1", "s1", "t1"));
}

TEST_F(DebugInfoCommandTest, TellsThePathsAsJsonWhenAskedTo) {
    seedDevice();
    const AppRun run = app({"--json", "debug-info"});
    ASSERT_EQ(run.status, 0) << run.out << run.err;
    const auto answer = nlohmann::json::parse(run.out);
    ASSERT_EQ(answer["attachments"].size(), 2u);
    EXPECT_EQ(answer["attachments"][0]["fileName"], "export.txt");
    EXPECT_EQ(answer["attachments"][1]["mimeType"], "application/x-sqlite3");
    for (const auto& attachment : answer["attachments"]) {
        EXPECT_TRUE(fs::is_regular_file(attachment["path"].get<std::string>())) << attachment;
    }
}

TEST_F(DebugInfoCommandTest, AnExportThatCantBeWrittenFailsWithAStatus) {
    seedDevice();
    writeBytes(documents() + "/debug-export", 10);  // a file where the folder goes
    const AppRun run = app({"debug-info"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("debug-info: the export could not be written"));
    EXPECT_THAT(run.out + run.err, HasSubstr("Send debug info error: "));
}

}  // namespace
}  // namespace tb::test
