// The writes of ItemDAO: saving items, the download marks, playlists, and how their failed
// saves are reported.

#include <filesystem>

#include "core/TBConstants.h"
#include "model/ItemDAO.h"
#include "model/PlaylistTracks.h"
#include "model/TBCoreDataManager.h"
#include "model/store/ObjectContext.h"
#include "offline/TBMusicDownloadManager.h"
#include "platform/NotificationCenter.h"
#include "support/DaoTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ItemDAOWritesTest : public DaoTest {
  protected:
    int rowsOf(const std::string& id) {
        return static_cast<int>(savedColumn("Item", "itemID", "itemID = '" + id + "'").size());
    }
    // The store refuses rows titled "REFUSED" and any change to the row "locked", as a
    // store that fails to write would.
    void refuseSomeWrites() {
        queryColumn(storePathOf(device),
                    "CREATE TRIGGER refuseTitle BEFORE INSERT ON Item WHEN NEW.title = 'REFUSED' "
                    "BEGIN SELECT RAISE(ABORT, 'refused'); END");
        queryColumn(storePathOf(device),
                    "CREATE TRIGGER refuseLocked BEFORE UPDATE ON Item WHEN NEW.itemID = 'locked' "
                    "BEGIN SELECT RAISE(ABORT, 'locked'); END");
    }
    int downloadNotifications = 0;
    void countDownloadNotifications() {
        device.context().notificationCenter().addObserver(
            TBConstants::TBGlobalNotifications().download, nullptr,
            [this](const Notification& notification) {
                EXPECT_TRUE(notification.userInfo.empty());
                ++downloadNotifications;
            });
    }
};

TEST_F(ItemDAOWritesTest, SavingAnItemCopiesItIntoANewRowWhereNilValuesKeepTheDefaults) {
    auto item = downloadedSong("s1", true, 1234.5);
    item->album.reset();
    item->volumeData = std::vector<std::int64_t>{1, 2, 3};
    auto row = dao().saveItem(item);
    ASSERT_NE(row, item);
    EXPECT_TRUE(row->isManaged());
    EXPECT_FALSE(item->isManaged());
    EXPECT_EQ(row->title, item->title);
    EXPECT_EQ(row->volumeData, item->volumeData);
    EXPECT_FALSE(row->album);
    EXPECT_EQ(dao().findByID("s1"), row);
    EXPECT_THAT(savedColumn("Item", "downloadDate"), ElementsAre("1234.5"));
    EXPECT_THAT(savedColumn("Item", "album"), ElementsAre("NULL"));
    EXPECT_TRUE(dao().newItem() && !dao().newItem()->isManaged());
}

TEST_F(ItemDAOWritesTest, AlbumTracksOnTheDeviceJoinTheAlbumWhilePlaylistItemsAlwaysGetNewRows) {
    auto single = albumTrack("t1", "a");
    single->albumTrackDownloadedAsSingle = true;
    single->downloaded = true;
    insertRow(single);

    dao().saveItem(album("a", {albumTrack("t1", "a"), albumTrack("t2", "a"), albumTrack("", "a")}));
    EXPECT_EQ(rowsOf("a"), 1);
    EXPECT_EQ(rowsOf("t1"), 1);
    EXPECT_EQ(rowsOf("t2"), 1);
    EXPECT_EQ(rowsOf(""), 1);  // a track without an id is never looked up
    EXPECT_THAT(savedColumn("Item", "albumTrackDownloadedAsSingle", "itemID = 't1'"),
                ElementsAre("0"));

    dao().saveItem(playlist("p", {playlistTrack("t1", "p"), playlistTrack("t3", "p")}));
    dao().saveItem(playlist("p", {playlistTrack("t1", "p"), playlistTrack("t3", "p")}));
    EXPECT_EQ(rowsOf("p"), 2);
    EXPECT_EQ(rowsOf("t1"), 3);
    EXPECT_EQ(rowsOf("t3"), 2);
    EXPECT_TRUE(device.errors.records.empty());
}

TEST_F(ItemDAOWritesTest, RemovingDuplicatesKeepsTheFirstRowAndTakesTheOthersDownloadsAlong) {
    countDownloadNotifications();
    auto first =
        insertRow(with(downloadedSong("dup", true), [](Item& row) { row.title = "first"; }));
    insertRow(downloadedSong("dup", false));
    insertRow(downloadedSong("dup", false));
    insertRow(downloadedSong("one", true));
    writeBytes(first->localFileURL(documents()), 20000);

    dao().removeDuplicateWithID("one");
    dao().removeDuplicateWithID("");
    EXPECT_EQ(downloadNotifications, 0);
    dao().removeDuplicateWithID("dup");
    EXPECT_THAT(savedColumn("Item", "title", "itemID = 'dup'"), ElementsAre("first"));
    EXPECT_EQ(dao().findByID("dup"), first);
    EXPECT_EQ(downloadNotifications, 2);
    // The duplicates share the kept row's file name, so the file goes with them.
    EXPECT_FALSE(fs::exists(first->localFileURL(documents())));
}

TEST_F(ItemDAOWritesTest, TheDownloadMarksSetTheFirstRowOfTheIdAndAreSaved) {
    insertRow(song("m"));
    auto second = insertRow(song("m"));
    insertRow(with(song("c"), [](Item& row) { row.cached = true; }));

    dao().markAsDownloaded("m");
    EXPECT_THAT(savedColumn("Item", "downloaded", "itemID = 'm'"), ElementsAre("1", "0"));
    dao().markAsDownloadCompleted("c");
    EXPECT_THAT(savedColumn("Item", "downloaded || downloadCompleted || cached", "itemID = 'c'"),
                ElementsAre("110"));
    dao().markAsDownloaded("");
    dao().markAsDownloadCompleted("absent");
    EXPECT_FALSE(second->downloaded);
    EXPECT_TRUE(device.errors.records.empty());
}

TEST_F(ItemDAOWritesTest, SyncingAListMarksTheWholeOfflineSetAndOneIdItsRow) {
    insertRow(downloadedSong("a", true));
    insertRow(downloadedSong("b", false));
    insertRow(downloadedSong("c", true));
    insertRow(with(downloadedSong("cached", true), [](Item& row) { row.cached = true; }));
    insertRow(song("plain"));
    const auto synced = [&] { return savedColumn("Item", "itemID", "synced = 1"); };

    dao().markItemsAsSynced("");
    dao().markItemsAsSynced("plain");
    EXPECT_THAT(synced(), ElementsAre("plain"));
    dao().markItemsAsSynced("a,b");
    EXPECT_THAT(synced(), ElementsAre("a", "b", "c", "plain"));
}

TEST_F(ItemDAOWritesTest, AFresherPlaylistBringsItsTextsAndDropsOnlyFinishedTracksItNoLongerLists) {
    auto local = playlist("p", {});
    local->title = "Old";
    local->banner = "https://img.example/banner-old.jpg";
    local->downloaded = true;
    auto row = insertRow(local);
    insertRow(downloadedSong("kept", true));
    insertRow(downloadedSong("finished", true));
    insertRow(downloadedSong("unfinished", false));
    PlaylistTracks::savePlaylist(saving(), *playlist("p", {song("finished"), song("unfinished"),
                                                           song("kept"), song("neverStored")}));

    auto fresher = playlist("p", {song("kept"), song("new")});
    fresher->title = "New";
    fresher->banner.reset();
    fresher->lastUpdated = "2026-11-01";
    dao().updatePlaylist(row, fresher);

    EXPECT_THAT(savedColumn("Item", "title || '|' || banner || '|' || lastUpdated", "itemID = 'p'"),
                ElementsAre("New|https://img.example/banner-old.jpg|2026-11-01"));
    EXPECT_THAT(savedColumn("PlaylistTracks", "trackId || ':' || number"),
                ElementsAre("unfinished:1", "kept:2", "neverStored:3"));
    EXPECT_EQ(TBMusicDownloadManager::sharedManager().imageDownloadQueue().operationCount(), 1u);

    // A fresher copy without items changes no entries.
    dao().updatePlaylist(row, playlist("p", {}));
    EXPECT_EQ(PlaylistTracks::playlistsTrackCount(saving(), "p"), 3);
}

TEST_F(ItemDAOWritesTest, TheCommentsCountIsSaved) {
    auto row = insertRow(song("s"));
    dao().updateCommentsCountFor(row, 42);
    EXPECT_THAT(savedColumn("Item", "commentsCount"), ElementsAre("42"));
}

TEST_F(ItemDAOWritesTest, FailedWritesAreReportedWithTheirLabelsAndNeverRebuildTheStore) {
    insertRow(song("locked"));
    refuseSomeWrites();
    const auto failIn = [&](const std::function<void()>& write) {
        device.errors.records.clear();
        write();
        store().rollback();  // a refused change stays pending: drop it before the next
        return reportedSaveFailures();
    };
    auto refused = song("r");
    refused->title = "REFUSED";
    EXPECT_THAT(failIn([&] { dao().saveItem(refused); }), ElementsAre("19 save"));
    EXPECT_THAT(failIn([&] { dao().saveItem(album("a", {refused})); }),
                ElementsAre("19 save - album track"));
    EXPECT_THAT(failIn([&] { dao().saveItem(playlist("p", {refused})); }),
                ElementsAre("19 save - playlist item"));
    EXPECT_THAT(failIn([&] { dao().markAsDownloaded("locked"); }),
                ElementsAre("19 markAsDownloaded:itemId"));
    EXPECT_THAT(failIn([&] { dao().markAsDownloadCompleted("locked"); }),
                ElementsAre("19 markAsDownloadCompleted:itemId"));
    // These writes learn nothing of their failure.
    EXPECT_THAT(failIn([&] { dao().updateCommentsCountFor(dao().findByID("locked"), 3); }),
                IsEmpty());
    EXPECT_THAT(failIn([&] { dao().markItemsAsSynced("locked"); }), IsEmpty());

    EXPECT_TRUE(saving().alertShown());
    device.queue.advanceBy(5);
    EXPECT_TRUE(device.ui.alerts.empty());
    EXPECT_EQ(rowsOf("locked"), 1);
    EXPECT_EQ(rowsOf("a"), 1);  // the album's own save went through before its track failed
}

}  // namespace
}  // namespace tb::test
