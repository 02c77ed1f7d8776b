// The debug export of the settings screen.

#include <filesystem>

#include "core/TBLogger.h"
#include "model/ItemDAO.h"
#include "model/StoreModel.h"
#include "model/store/FetchRequest.h"
#include "model/store/ObjectContext.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "platform/Log.h"
#include "support/DaoTestSupport.h"
#include "support/FileContents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kHeader =
    "id,cached,localFileURL,fileSize,type,downloadDate,downloaded,downloadCompleted\n";

class DebugExportTest : public DaoTest {
  protected:
    std::string fileURL(const std::string& name) { return "file://" + documents() + "/" + name; }
};

TEST_F(DebugExportTest, ExportTextHasOneLinePerCachedListRowNewestFirst) {
    auto older = insertRow(downloadedSong("older", false, 1700000000.75));
    writeBytes(older->localFileURL(documents()), 12345);
    insertRow(
        with(downloadedSong("newer", true, 1800000000), [](Item& row) { row.cached = true; }));
    insertRow(with(song("my song"), [](Item& row) { row.type.reset(); }));
    insertRow(playlist("list", {}));  // not in the list

    EXPECT_EQ(dao().debugExportText(),
              std::string(kHeader) + "newer,true," + fileURL("newer.mp3") +
                  ",0,song,2027-01-15 08:00:00 +0000,true,true\n" + "older,false," +
                  fileURL("older.mp3") + ",12345,song,2023-11-14 22:13:20 +0000,true,false\n" +
                  "my song,false," + fileURL("my%2520song.mp3") + ",0,(null),(null),false,false\n");
}

TEST_F(DebugExportTest, TheExportAndACompleteCopyOfTheStoreAreLeftForTheListenerToSend) {
    insertRow(downloadedSong("a", true, 1700000000));
    insertRow(downloadedSong("b", true, 1700000001));

    const auto attachments = dao().sendDebugInfo();
    ASSERT_TRUE(attachments);
    ASSERT_EQ(attachments->size(), 2u);
    const auto& exported = (*attachments)[0];
    const auto& storeCopy = (*attachments)[1];
    EXPECT_EQ(exported.fileName, "export.txt");
    EXPECT_EQ(exported.mimeType, "text/plain");
    EXPECT_EQ(storeCopy.fileName, "CoreData.sqlite");
    EXPECT_EQ(storeCopy.mimeType, "application/x-sqlite3");
    EXPECT_EQ(fs::path(exported.path).parent_path(), fs::path(documents()) / "debug-export");
    EXPECT_EQ(readFileText(documents() + "/export.txt"), dao().debugExportText());
    EXPECT_EQ(readFileText(exported.path), dao().debugExportText());

    // The copy alone, without the store's sidecars, holds every row.
    PersistentStoreCoordinator copy(StoreModel::merged());
    ASSERT_TRUE(copy.addPersistentStore(storeCopy.path, nullptr));
    EXPECT_THAT(queryColumn(storeCopy.path, "SELECT itemID FROM Item ORDER BY rowid"),
                ElementsAre("a", "b"));
}

TEST_F(DebugExportTest, AnExportThatCantBeWrittenIsLoggedAndComposesNothing) {
    std::vector<std::string> lines;
    auto previous = setLogSink([&](std::string_view line) { lines.emplace_back(line); });
    writeBytes(documents() + "/debug-export", 3);  // a file where the folder must go
    EXPECT_FALSE(dao().sendDebugInfo());
    setLogSink(previous);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_THAT(lines[0], ::testing::StartsWith("Send debug info error: "));
    EXPECT_THAT(lines[0], HasSubstr("debug-export"));
}

}  // namespace
}  // namespace tb::test
