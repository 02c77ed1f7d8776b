// Opening the store and the error policy, across launches of the app on one device.
//
// The opening failures are real broken files: a folder in the place of the store is code 256
// (the file can't be read), a file of other bytes is 259, a truncated store is 11, and a
// tiny file system (or a file size limit) is 13.

#include <filesystem>
#include <fstream>

#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "api/TBDataManager.h"
#include "core/TBConstants.h"
#include "core/TBLocalization.h"
#include "model/ItemDAO.h"
#include "model/TBCoreDataManager.h"
#include "model/store/ObjectContext.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "model/store/StoreError.h"
#include "platform/BackupExclusion.h"
#include "support/DaoTestSupport.h"
#include "support/FileContents.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using ::testing::MatchesRegex;

const TBCrashlyticsErrorCodes& codes() {
    return TBConstants::TBCrashlyticsErrorCodes();
}

class StoreOpeningTest : public ::testing::Test {
  protected:
    std::string path() { return storePathOf(device); }
    std::vector<std::int64_t> events() { return device.errors.codesIn("com.tunebrook"); }
    std::vector<std::int64_t> storeErrors() { return device.errors.codesIn(StoreError::kDomain); }
    bool flag() { return device.defaults.standard().boolForKey("foundError256OnStartup"); }

    // A store that can't be read: a folder in the place of the file, both sidecars beside it.
    void makeUnreadable() {
        fs::create_directory(path());
        writeBytes(path() + "-wal", 0);
        writeBytes(path() + "-shm", 0);
    }
    void removeStoreFiles() {
        fs::remove_all(path());
        fs::remove(path() + "-wal");
        fs::remove(path() + "-shm");
    }
    // A store with `rows` songs in it, closed.
    void makeStoreWithRows(int rows) {
        Launch launch(device);
        launch.startup();
        for (int i = 0; i < rows; ++i) {
            auto row = launch.store()->insertNewObject<Item>();
            row->itemID = "song" + std::to_string(i);
            row->title = std::string(300, 't');
        }
        ASSERT_TRUE(launch.store()->save());
    }
    std::int64_t rowCount(Launch& launch) {
        return launch.store()
            ->countForFetchRequest(FetchRequest::fetchRequestWithEntityName("Item"))
            .value_or(-1);
    }
    void clearRecords() { device.errors.records.clear(); }

    TestPlatform device;
};

TEST_F(StoreOpeningTest, AFirstLaunchOpensAnEmptyStoreWithItsThreeFilesKeptOutOfBackups) {
    Launch launch(device);
    launch.startup();
    ASSERT_NE(launch.store(), nullptr);
    EXPECT_TRUE(launch.data().persistentStoreCoordinator()->hasPersistentStore());
    EXPECT_EQ(launch.data().storePath(), path());
    for (const std::string& file : PersistentStoreCoordinator::storeFiles(path())) {
        EXPECT_TRUE(isExcludedFromBackup(file)) << file;
    }
    // The same objects on every later call.
    auto* context = launch.store();
    auto coordinator = launch.data().persistentStoreCoordinator();
    EXPECT_EQ(launch.data().loadManagedObjectContext().get(), context);
    EXPECT_EQ(launch.data().loadPersistentStoreCoordinator(), coordinator);
    launch.data().startup();
    EXPECT_EQ(launch.store(), context);

    device.queue.advanceBy(5);
    EXPECT_TRUE(device.errors.records.empty());
    EXPECT_TRUE(device.ui.alerts.empty());
    EXPECT_FALSE(flag());
}

TEST_F(StoreOpeningTest, AStoreThatCantBeReadIsRememberedAcrossLaunchesUntilOneOpensCleanly) {
    makeUnreadable();
    {
        Launch first(device);
        first.startup();
        ASSERT_EQ(storeErrors(), std::vector<std::int64_t>{StoreError::kUnreadable});
        const auto& failure = device.errors.records.front();
        EXPECT_EQ(failure.additionalInfo.at("Method"), "persistentStoreCoordinator");
        EXPECT_EQ(failure.additionalInfo.at("UnderlyingException"),
                  failure.error.userInfo.at(StoreError::kUnderlyingErrorKey));
        EXPECT_FALSE(failure.additionalInfo.at("UnderlyingException").empty());
        EXPECT_EQ(events(), std::vector<std::int64_t>{
                                codes().coreDataError256OnStartupAfterSuccessfulStartup});
        EXPECT_TRUE(flag());
        EXPECT_TRUE(first.policy().foundError256OnStartup());
        // The run goes on with a context over a coordinator that has no store; nothing is
        // deleted and nothing is shown.
        ASSERT_NE(first.store(), nullptr);
        EXPECT_FALSE(first.data().persistentStoreCoordinator()->hasPersistentStore());
        device.queue.advanceBy(5);
        EXPECT_TRUE(device.ui.alerts.empty());
        EXPECT_TRUE(fs::is_directory(path()));
    }
    clearRecords();
    {
        Launch second(device);
        second.startup();
        EXPECT_EQ(events(), std::vector<std::int64_t>{
                                codes().coreDataError256OnStartupAfterError256OnStartup});
        EXPECT_EQ(events().front(), 129);
        EXPECT_TRUE(flag());
    }
    removeStoreFiles();
    clearRecords();
    {
        Launch third(device);
        third.startup();
        EXPECT_EQ(device.errors.records.size(), 1u);
        EXPECT_EQ(events(), std::vector<std::int64_t>{
                                codes().coreDataNoErrorsOnStartupAfterError256OnStartup});
        EXPECT_TRUE(device.errors.records.front().error.userInfo.empty());
        EXPECT_FALSE(flag());
        EXPECT_FALSE(third.policy().foundError256OnStartup());
    }
    clearRecords();
    {
        Launch fourth(device);
        fourth.startup();
        EXPECT_TRUE(device.errors.records.empty());
    }
}

TEST_F(StoreOpeningTest, AnotherOpeningErrorAfterA256LaunchIsRecordedWithItsCodeAndClearsTheFlag) {
    makeUnreadable();
    { Launch(device).startup(); }
    ASSERT_TRUE(flag());
    removeStoreFiles();
    writeBytes(path(), 8192, 'g');
    clearRecords();

    Launch launch(device);
    launch.startup();
    EXPECT_EQ(storeErrors(), std::vector<std::int64_t>{StoreError::kNotADatabase});
    EXPECT_EQ(events(),
              (std::vector<std::int64_t>{codes().coreDataOtherErrorOnStartupAfterError256OnStartup,
                                         codes().databaseRecreated}));
    EXPECT_EQ(device.errors.records[1].error.userInfo.at("ErrorCode"), "259");
    EXPECT_FALSE(flag());
    EXPECT_FALSE(launch.policy().foundError256OnStartup());
}

TEST_F(StoreOpeningTest,
       AFileThatIsNoStoreIsReplacedByAnEmptyStoreAndTheListenerToldOnceASecondLater) {
    makeStoreWithRows(3);
    fs::remove(path() + "-wal");
    fs::remove(path() + "-shm");
    writeBytes(path(), 8192, 'g');

    Launch launch(device);
    launch.startup();
    EXPECT_EQ(storeErrors(), std::vector<std::int64_t>{StoreError::kNotADatabase});
    EXPECT_EQ(device.errors.records.front().additionalInfo.at("Method"),
              "persistentStoreCoordinator");
    EXPECT_EQ(events(), std::vector<std::int64_t>{codes().databaseRecreated});
    EXPECT_TRUE(device.errors.records.back().error.userInfo.empty());
    EXPECT_FALSE(flag());
    ASSERT_TRUE(launch.data().persistentStoreCoordinator()->hasPersistentStore());
    EXPECT_EQ(rowCount(launch), 0);
    // The broken file is kept beside the new store, under a name with the date.
    const std::string kept = launch.data().keptBrokenStorePath();
    EXPECT_THAT(kept,
                MatchesRegex(device.context().paths().documents +
                             "/CoreData-broken-[0-9]{4}-[0-9]{2}-[0-9]{2}-[0-9]{6}\\.sqlite"));
    EXPECT_EQ(readFileText(kept), std::string(8192, 'g'));
    for (const std::string& file : PersistentStoreCoordinator::storeFiles(path())) {
        EXPECT_TRUE(isExcludedFromBackup(file)) << file;
    }

    device.queue.advanceBy(0.999);
    EXPECT_TRUE(device.ui.alerts.empty());
    device.queue.advanceBy(0.002);
    ASSERT_EQ(device.ui.alerts.size(), 1u);
    const Alert& alert = device.ui.alerts.front();
    EXPECT_FALSE(alert.title.has_value());
    EXPECT_EQ(alert.message, TBLocalization::localizedString("database_error_recreated"));
    ASSERT_EQ(alert.actions.size(), 1u);
    EXPECT_EQ(alert.actions[0].title, TBLocalization::localizedString("ok"));
    EXPECT_EQ(alert.actions[0].style, AlertAction::Style::Default);
    EXPECT_FALSE(alert.actions[0].handler);
    device.queue.advanceBy(60);
    EXPECT_EQ(device.ui.alerts.size(), 1u);

    // The rebuilt store is a store like any other.
    auto row = launch.store()->insertNewObject<Item>();
    row->itemID = "after";
    EXPECT_TRUE(launch.store()->save());
}

TEST_F(StoreOpeningTest, ACorruptStoreIsRebuiltAndASecondCorruptionInTheSameRunIsIgnored) {
    makeStoreWithRows(400);
    const auto truncated = fs::file_size(path()) / 2;
    fs::resize_file(path(), truncated);

    Launch launch(device);
    launch.startup();
    EXPECT_EQ(storeErrors(), std::vector<std::int64_t>{StoreError::kCorrupt});
    EXPECT_EQ(events(), std::vector<std::int64_t>{codes().databaseRecreated});
    EXPECT_EQ(rowCount(launch), 0);
    EXPECT_TRUE(launch.policy().alertShown());
    EXPECT_EQ(fs::file_size(launch.data().keptBrokenStorePath()), truncated);

    auto row = launch.store()->insertNewObject<Item>();
    row->itemID = "kept";
    ASSERT_TRUE(launch.store()->save());
    Error corrupt{StoreError::kDomain, StoreError::kCorrupt, "again", {}};
    launch.policy().handleError(corrupt, true);
    launch.policy().handleError(Error{StoreError::kDomain, StoreError::kDiskFull, "full", {}},
                                false);
    EXPECT_EQ(events(), std::vector<std::int64_t>{codes().databaseRecreated});
    EXPECT_EQ(rowCount(launch), 1);
    device.queue.advanceBy(10);
    EXPECT_EQ(device.ui.alerts.size(), 1u);
}

// The header and the schema are whole, so the file opens; only a page of rows is broken. The
// store is kept: the reads that reach the page fail, and nothing is rebuilt or shown.
TEST_F(StoreOpeningTest, AStoreWithABrokenPageOfRowsIsKeptAndNotRebuilt) {
    makeStoreWithRows(400);
    ASSERT_EQ(queryColumn(path(), "PRAGMA page_size"), std::vector<std::string>{"4096"});
    const std::uintmax_t pages = fs::file_size(path()) / 4096;
    ASSERT_GT(pages, 20u);
    {
        std::fstream file(path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>((pages / 2) * 4096));
        const std::string garbage(4096, '\xA5');
        file.write(garbage.data(), static_cast<std::streamsize>(garbage.size()));
    }

    Launch launch(device);
    launch.startup();
    EXPECT_TRUE(storeErrors().empty());
    EXPECT_TRUE(events().empty());
    ASSERT_TRUE(launch.data().persistentStoreCoordinator()->hasPersistentStore());
    EXPECT_EQ(launch.dao().cachedItems(), std::nullopt);  // a read across the page fails
    auto row = launch.store()->insertNewObject<Item>();
    row->itemID = "after";
    ASSERT_TRUE(launch.store()->save());
    device.queue.advanceBy(10);
    EXPECT_TRUE(device.ui.alerts.empty());
}

TEST_F(StoreOpeningTest, AnErrorOutsideTheOpeningNeverRebuildsAndOnlyAFullDiskIsTold) {
    Launch launch(device);
    launch.startup();
    auto row = launch.store()->insertNewObject<Item>();
    row->itemID = "kept";
    ASSERT_TRUE(launch.store()->save());

    launch.policy().handleError(Error{StoreError::kDomain, StoreError::kNotADatabase, "", {}},
                                false);
    EXPECT_TRUE(launch.policy().alertShown());
    EXPECT_EQ(rowCount(launch), 1);
    EXPECT_TRUE(events().empty());
    device.queue.advanceBy(10);
    EXPECT_TRUE(device.ui.alerts.empty());

    Launch next(device);
    next.startup();
    // The code alone decides, whatever the domain.
    next.policy().handleError(Error{"elsewhere", StoreError::kDiskFull, "", {}}, false);
    device.queue.advanceBy(1);
    ASSERT_EQ(device.ui.alerts.size(), 1u);
    EXPECT_EQ(device.ui.alerts[0].message,
              TBLocalization::localizedString("database_error_lowstorage"));
    EXPECT_FALSE(flag());
}

TEST_F(StoreOpeningTest, AfterA256OpeningTheFirstSaveAloneReportsWhetherItWorked) {
    makeUnreadable();
    Launch launch(device);
    launch.startup();
    clearRecords();

    // Nothing to write: the save works.
    launch.policy().save(nullptr);
    EXPECT_EQ(events(),
              std::vector<std::int64_t>{codes().coreDataSaveSucceededAfterError256OnStartup});
    EXPECT_TRUE(launch.policy().loggedFirstSaveResultAfterError256OnStartup());

    // Changes with no store behind the coordinator: the save raises; only the raise is
    // recorded from now on, and the caller learns nothing.
    launch.store()->insertNewObject<Item>()->itemID = "lost";
    Error error;
    launch.policy().save(&error);
    EXPECT_TRUE(error.domain.empty());
    EXPECT_EQ(events(),
              (std::vector<std::int64_t>{codes().coreDataSaveSucceededAfterError256OnStartup,
                                         codes().coreDataSave}));
    const auto& raised = device.errors.records.back().additionalInfo;
    EXPECT_EQ(raised.at("ExceptionName"), "NSInternalInconsistencyException");
    EXPECT_FALSE(raised.at("ExceptionReason").empty());
    EXPECT_TRUE(launch.policy().reportingSave("save"));
    EXPECT_EQ(events().size(), 3u);
    EXPECT_EQ(events().back(), codes().coreDataSave);
}

TEST_F(StoreOpeningTest, AfterA256OpeningAFirstSaveThatRaisesIsReportedAsFailed) {
    makeUnreadable();
    Launch launch(device);
    launch.startup();
    clearRecords();
    launch.store()->insertNewObject<Item>()->itemID = "lost";
    launch.policy().save(nullptr);
    launch.policy().save(nullptr);
    EXPECT_EQ(events(), (std::vector<std::int64_t>{codes().coreDataSave,
                                                   codes().coreDataSaveFailedAfterError256OnStartup,
                                                   codes().coreDataSave}));
}

TEST_F(StoreOpeningTest, SavesAfterACleanOpeningReportNothing) {
    Launch launch(device);
    launch.startup();
    launch.policy().save(nullptr);
    launch.store()->insertNewObject<Item>()->itemID = "a";
    launch.policy().save(nullptr);
    EXPECT_TRUE(launch.policy().reportingSave("save"));
    EXPECT_TRUE(device.errors.records.empty());
    EXPECT_EQ(rowCount(launch), 1);
}

// Fills the store through the DAO until a save fails. Writes "<code> <method> <alerts
// before 1 s> <alerts at 1 s> <alert text>".
int fillUntilAReportingSaveFails(int out, const std::string& home) {
    AppOptions options;
    options.paths = Paths::underHome(home);
    TestPlatform device(options);
    Launch launch(device);
    launch.startup();
    if (!launch.store()) {
        return 2;
    }
    // The DAO's own saves report their failures; stop at the first one.
    for (int i = 0; i < 100000 && device.errors.records.empty(); ++i) {
        auto item = song(std::to_string(i));
        item->title = std::string(3000, 'a' + static_cast<char>(i % 26));
        launch.dao().saveItem(item);
    }
    if (device.errors.records.empty()) {
        return 3;
    }
    const auto& failure = device.errors.records.back();
    device.queue.advanceBy(0.5);
    const auto early = device.ui.alerts.size();
    device.queue.advanceBy(0.5);
    const auto late = device.ui.alerts.size();
    writeToParent(out, std::to_string(failure.error.code) + " " +
                           failure.additionalInfo.at("Method") + " " + std::to_string(early) + " " +
                           std::to_string(late) + " " +
                           (late ? device.ui.alerts[0].message : std::string("-")));
    return 0;
}

void expectLowStorageAlert(const ChildResult& result) {
    ASSERT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output,
              "13 save 0 1 " + TBLocalization::localizedString("database_error_lowstorage"));
}

TEST(StoreFullDiskTest, AFullFileSystemReachesTheLowStorageAlertThroughTheReportingSave) {
    TempDir dir;
    fs::create_directory(dir.file("small"));
    const ChildResult result = runInChild([&](int out) {
        if (!enterPrivateMounts() ||
            mount("tmpfs", dir.file("small").c_str(), "tmpfs", 0, "size=393216") != 0) {
            return kSkipChild;
        }
        return fillUntilAReportingSaveFails(out, dir.file("small"));
    });
    if (result.status == kSkipChild) {
        GTEST_SKIP() << "no private mount namespace here";
    }
    expectLowStorageAlert(result);
}

TEST(StoreFullDiskTest, AFileSizeLimitReachesTheLowStorageAlertToo) {
    TempDir dir;
    const ChildResult result = runInChild([&](int out) {
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = 300001;
        setrlimit(RLIMIT_FSIZE, &limit);
        return fillUntilAReportingSaveFails(out, dir.path());
    });
    expectLowStorageAlert(result);
}

// Something other than a store file in the place of the store or a sidecar: the opening
// fails as a store that can't be read (nothing is deleted, the run goes on without a
// store), nothing stops the process, and nothing is written where a symlink points.
struct BrokenPath {
    const char* name;
    const char* file;  // "" for the store, else the sidecar's suffix
    enum { folder, danglingSymlink, pipe } kind;
};

class BrokenStorePathTest : public StoreOpeningTest,
                            public ::testing::WithParamInterface<BrokenPath> {
  protected:
    void SetUp() override {
        const std::string broken = path() + GetParam().file;
        switch (GetParam().kind) {
            case BrokenPath::folder:
                fs::create_directory(broken);
                break;
            case BrokenPath::danglingSymlink:
                fs::create_symlink(outside.file("elsewhere"), broken);
                break;
            case BrokenPath::pipe:
                ASSERT_EQ(mkfifo(broken.c_str(), 0600), 0);
                break;
        }
    }
    TempDir outside;
};

TEST_P(BrokenStorePathTest, FailsAsAnUnreadableStoreAndTheRunGoesOn) {
    for (int run = 0; run < 2; ++run) {
        clearRecords();
        Launch launch(device);
        launch.startup();
        EXPECT_EQ(storeErrors(), std::vector<std::int64_t>{StoreError::kUnreadable});
        ASSERT_NE(launch.store(), nullptr);
        EXPECT_FALSE(launch.data().persistentStoreCoordinator()->hasPersistentStore());
        EXPECT_EQ(launch.dao().findByID("s1"), nullptr);
        EXPECT_TRUE(launch.data().keptBrokenStorePath().empty());
        device.queue.advanceBy(5);
        EXPECT_TRUE(device.ui.alerts.empty());
    }
    EXPECT_TRUE(flag());
    EXPECT_TRUE(fs::is_symlink(path() + GetParam().file) || fs::exists(path() + GetParam().file));
    EXPECT_TRUE(folderEntries(outside.path()).empty());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds,
    BrokenStorePathTest,
    ::testing::Values(BrokenPath{"FolderAsStore", "", BrokenPath::folder},
                      BrokenPath{"DanglingSymlinkAsStore", "", BrokenPath::danglingSymlink},
                      BrokenPath{"PipeAsStore", "", BrokenPath::pipe},
                      BrokenPath{"FolderAsWal", "-wal", BrokenPath::folder},
                      BrokenPath{"DanglingSymlinkAsWal", "-wal", BrokenPath::danglingSymlink},
                      BrokenPath{"DanglingSymlinkAsShm", "-shm", BrokenPath::danglingSymlink}),
    [](const auto& named) { return std::string(named.param.name); });

class StoreOpeningDeathTest : public StoreOpeningTest {
  protected:
    StoreOpeningDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(StoreOpeningDeathTest, TheBackupMarkWantsAnExistingFile) {
    Launch launch(device);
    writeBytes(device.home.file("present"), 4);
    EXPECT_TRUE(launch.data().addSkipBackupAttributeToItemAtURL(device.home.file("present")));
    EXPECT_TRUE(isExcludedFromBackup(device.home.file("present")));
    EXPECT_DEATH(launch.data().addSkipBackupAttributeToItemAtURL(device.home.file("absent")),
                 "fileExistsAtPath");
}

TEST_F(StoreOpeningDeathTest, TheStrictSaveStopsTheProcessWhenTheSaveFails) {
    makeUnreadable();
    Launch launch(device);
    launch.startup();
    launch.data().saveManagedObjectContext();  // nothing to write: nothing happens
    launch.store()->insertNewObject<Item>()->itemID = "a";
    EXPECT_DEATH(launch.data().saveManagedObjectContext(), "Unresolved error");
}

}  // namespace
}  // namespace tb::test
