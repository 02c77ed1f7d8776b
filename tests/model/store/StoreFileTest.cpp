#include <filesystem>
#include <fstream>

#include "StoreTestSupport.h"
#include "model/StoreModel.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "model/store/StoreError.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using Rows = std::vector<std::string>;

TEST(StoreFileTest, TheStoreRunsInWriteAheadModeWithItsSidecarsBesideIt) {
    StoreFixture store;
    EXPECT_TRUE(fs::exists(store.path() + "-wal"));
    EXPECT_TRUE(fs::exists(store.path() + "-shm"));
    EXPECT_EQ(StoreFixture::query(store.path(), "PRAGMA journal_mode"), Rows{"wal"});
    store.saveItem("1");
    store.close();
    EXPECT_TRUE(fs::exists(store.path() + "-wal"));  // kept after closing too
    store.open();
    EXPECT_EQ(store.idsWhere("TRUEPREDICATE"), Rows{"1"});
    EXPECT_EQ(PersistentStoreCoordinator::storeFiles(store.path()),
              (Rows{store.path(), store.path() + "-wal", store.path() + "-shm"}));
}

TEST(StoreFileTest, EveryEntityHasItsTableAndLookupsHaveIndexes) {
    StoreFixture store;
    EXPECT_EQ(
        StoreFixture::query(store.path(),
                            "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"),
        (Rows{"Artist", "BookmarkItem", "BookmarkStatus", "CachedItem", "Item", "PlaylistTracks"}));
    EXPECT_EQ(
        StoreFixture::query(store.path(),
                            "SELECT name FROM sqlite_master WHERE type = 'index' ORDER BY name"),
        (Rows{"Artist_artistId", "CachedItem_itemID", "Item_itemID", "PlaylistTracks_playlistId",
              "PlaylistTracks_trackId"}));
}

TEST(StoreFileTest, OpeningAnOlderFileAddsTheMissingColumnsAndTablesWithDefaults) {
    TempDir dir;
    std::string path = dir.file("CoreData.sqlite");
    StoreFixture::query(
        path, "CREATE TABLE Item (pk INTEGER PRIMARY KEY, itemID TEXT, title TEXT, legacy TEXT)");
    StoreFixture::query(path,
                        "INSERT INTO Item (itemID, title, legacy) VALUES ('old', 'Old', 'kept')");

    auto coordinator = std::make_shared<PersistentStoreCoordinator>(StoreModel::merged());
    Error error;
    ASSERT_TRUE(coordinator->addPersistentStore(path, &error)) << error.message;
    ObjectContext context(coordinator);
    auto items = *context.fetch<Item>(FetchRequest::fetchRequestWithEntityName("Item"));
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0]->title, "Old");
    EXPECT_FALSE(items[0]->downloaded);
    EXPECT_EQ(items[0]->downloadDate, std::nullopt);

    items[0]->downloaded = true;
    items[0]->didChange();
    ASSERT_TRUE(context.save(&error)) << error.message;
    EXPECT_EQ(StoreFixture::query(path, "SELECT legacy || downloaded || cached FROM Item"),
              Rows{"kept10"});
    EXPECT_EQ(StoreFixture::query(
                  path, "SELECT COUNT(*) FROM sqlite_master WHERE name = 'PlaylistTracks'"),
              Rows{"1"});
}

// Makes a store with enough rows to span many pages, and closes it.
std::string makeStore(TempDir& dir, int rows = 400) {
    std::string path = dir.file("CoreData.sqlite");
    auto coordinator = std::make_shared<PersistentStoreCoordinator>(StoreModel::merged());
    EXPECT_TRUE(coordinator->addPersistentStore(path, nullptr));
    ObjectContext context(coordinator);
    for (int i = 0; i < rows; ++i) {
        auto item = context.insertNewObject<Item>();
        item->itemID = std::to_string(i);
        item->title = std::string(300, 'x');
    }
    EXPECT_TRUE(context.save());
    return path;
}

Error openError(const std::string& path) {
    PersistentStoreCoordinator coordinator(StoreModel::merged());
    Error error;
    EXPECT_FALSE(coordinator.addPersistentStore(path, &error));
    EXPECT_FALSE(coordinator.hasPersistentStore());
    return error;
}

void overwrite(const std::string& path, std::uintmax_t offset, const std::string& bytes) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(offset));
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string garbage(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 12345;
    for (char& c : bytes) {
        state = state * 1103515245 + 12345;
        c = static_cast<char>(state >> 24);
    }
    return bytes;
}

// A file broken where opening reads it (header, schema) fails to open, with the code that
// tells the app what to do about it.
struct BrokenFile {
    const char* name;
    void (*breakStore)(TempDir& dir, const std::string& path);
    std::int64_t code;
    const char* sqliteCode;
};

class BrokenFileTest : public ::testing::TestWithParam<BrokenFile> {};

TEST_P(BrokenFileTest, FailsToOpenWithItsCode) {
    TempDir dir;
    const std::string path = dir.file("CoreData.sqlite");
    GetParam().breakStore(dir, path);
    Error error = openError(path);
    EXPECT_EQ(error.domain, StoreError::kDomain);
    EXPECT_EQ(error.code, GetParam().code) << error.userInfo[StoreError::kUnderlyingErrorKey];
    EXPECT_EQ(error.userInfo[StoreError::kSQLiteErrorCodeKey], GetParam().sqliteCode);
    EXPECT_EQ(error.userInfo[StoreError::kFilePathKey], path);
}

INSTANTIATE_TEST_SUITE_P(
    Files,
    BrokenFileTest,
    ::testing::Values(
        BrokenFile{"Truncated",
                   [](TempDir& dir, const std::string& path) {
                       makeStore(dir);
                       fs::resize_file(path, fs::file_size(path) / 2);
                   },
                   StoreError::kCorrupt, "11"},
        BrokenFile{"GarbageSchemaPage",
                   [](TempDir& dir, const std::string& path) {
                       makeStore(dir);
                       overwrite(path, 100, garbage(3996));  // the header stays
                   },
                   StoreError::kCorrupt, "11"},
        BrokenFile{"AllGarbage",
                   [](TempDir& dir, const std::string& path) {
                       makeStore(dir);
                       overwrite(path, 0, garbage(fs::file_size(path)));
                       fs::remove(path + "-wal");
                       fs::remove(path + "-shm");
                   },
                   StoreError::kNotADatabase, "26"},
        BrokenFile{"Text",
                   [](TempDir&, const std::string& path) {
                       std::ofstream(path) << "id,cached,localFileURL\n1,true,file:///a.mp3\n";
                   },
                   StoreError::kNotADatabase, "26"},
        BrokenFile{"Folder", [](TempDir&, const std::string& path) { fs::create_directory(path); },
                   StoreError::kUnreadable, "14"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(StoreFileTest, AnEmptyFileOpensAsAnEmptyStore) {
    TempDir dir;
    std::ofstream(dir.file("CoreData.sqlite")).close();
    PersistentStoreCoordinator coordinator(StoreModel::merged());
    Error error;
    EXPECT_TRUE(coordinator.addPersistentStore(dir.file("CoreData.sqlite"), &error))
        << error.message;
}

std::uintmax_t rootPageOf(const std::string& path, const std::string& name) {
    return std::stoull(StoreFixture::query(
        path, "SELECT rootpage FROM sqlite_master WHERE name = '" + name + "'")[0]);
}

// Opening reads no page of rows: a broken one fails the statements that reach it, as a
// corrupt store, and leaves every other row where it is.
TEST(StoreFileTest, ABrokenPageOfRowsOpensAndFailsOnlyTheReadsThatReachIt) {
    TempDir dir;
    std::string path = makeStore(dir);
    overwrite(path, (rootPageOf(path, "Item") - 1) * 4096, garbage(4096));
    StoreFixture store(path);
    Error error;
    EXPECT_EQ(store.context().fetch<Item>(FetchRequest::fetchRequestWithEntityName("Item"), &error),
              std::nullopt);
    EXPECT_EQ(error.code, StoreError::kCorrupt);
    EXPECT_EQ(store.context().countForFetchRequest(
                  FetchRequest::fetchRequestWithEntityName("PlaylistTracks")),
              0);
}

// An index holds nothing that the rows don't: a broken one is made again from them, and the
// download records stay.
TEST(StoreFileTest, ABrokenIndexIsRebuiltAndEveryRowKept) {
    TempDir dir;
    std::string path = makeStore(dir);
    overwrite(path, (rootPageOf(path, "Item_itemID") - 1) * 4096, garbage(4096));
    StoreFixture store(path);
    Error error;
    EXPECT_EQ(store.idsWhere("itemID == %@", {"123"}), Rows{"123"});
    EXPECT_EQ(store.context().countForFetchRequest(FetchRequest::fetchRequestWithEntityName("Item"),
                                                   &error),
              400);
    EXPECT_EQ(StoreFixture::query(path, "PRAGMA integrity_check"), Rows{"ok"});
}

TEST(StoreFileTest, DestroyingTheStoreRemovesItsThreeFilesForAFreshStart) {
    TempDir dir;
    std::string path = makeStore(dir);
    PersistentStoreCoordinator::destroyPersistentStore(path);
    for (const std::string& file : PersistentStoreCoordinator::storeFiles(path)) {
        EXPECT_FALSE(fs::exists(file)) << file;
    }
    PersistentStoreCoordinator::destroyPersistentStore(path);  // nothing left: no error
    PersistentStoreCoordinator coordinator(StoreModel::merged());
    ASSERT_TRUE(coordinator.addPersistentStore(path, nullptr));
    EXPECT_EQ(StoreFixture::query(path, "SELECT COUNT(*) FROM Item"), Rows{"0"});
}

}  // namespace
}  // namespace tb::test
