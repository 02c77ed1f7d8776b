// The queries of ItemDAO over a real store: the offline lists, the download states, files.

#include <filesystem>
#include <tuple>

#include "model/ItemDAO.h"
#include "model/PlaylistTracks.h"
#include "model/TBCoreDataManager.h"
#include "model/store/ObjectContext.h"
#include "offline/TBMusicDownloadManager.h"
#include "support/DaoTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using ::testing::UnorderedElementsAreArray;

class ItemDAOQueriesTest : public DaoTest {
  protected:
    // Rows in every offline state, each named after what it is.
    void storeEveryKind() {
        const auto cached = [](Item& row) { row.cached = true; };
        const auto downloaded = [](Item& row) { row.downloaded = row.downloadCompleted = true; };
        insertRow(downloadedSong("song", true, 100));
        insertRow(
            with(downloadedSong("songSynced", true, 90), [](Item& row) { row.synced = true; }));
        insertRow(downloadedSong("songRunning", false, 80));
        insertRow(with(downloadedSong("songCached", true, 70), cached));
        insertRow(song("songNotOffline"));
        insertRow(with(album("album", {}), [](Item& row) {
            row.downloaded = true;
            row.downloadDate = 60;
        }));
        insertRow(with(albumTrack("single", "gone"), [](Item& row) {
            row.downloaded = row.downloadCompleted = row.albumTrackDownloadedAsSingle = true;
            row.downloadDate = 50;
        }));
        insertRow(with(albumTrack("ofAlbum", "album"), downloaded));
        insertRow(with(playlist("playlist", {}), [](Item& row) { row.downloaded = true; }));
        insertRow(with(playlistTrack("ofPlaylist", "playlist"), downloaded));
        insertRow(with(playlist("playlistCached", {}), cached));
    }
};

TEST_F(ItemDAOQueriesTest, EachOfflineListHoldsExactlyTheRowsOfItsState) {
    storeEveryKind();
    EXPECT_THAT(idsWhere(dao().cachedItemsPredicate()),
                UnorderedElementsAre("song", "songSynced", "songRunning", "songCached",
                                     "songNotOffline", "album", "single", "playlistCached"));
    EXPECT_THAT(idsWhere(dao().unsyncedDownloadsPredicate()),
                UnorderedElementsAre("song", "songRunning", "album", "single"));
    EXPECT_THAT(idsWhere(dao().offlineIdsPredicate()),
                UnorderedElementsAre("song", "songSynced", "songRunning", "album", "single",
                                     "ofAlbum", "ofPlaylist"));
    EXPECT_THAT(idsWhere(dao().offlineAllPredicate()),
                UnorderedElementsAre("song", "songSynced", "songRunning", "album", "single"));
    EXPECT_THAT(idsWhere(dao().offlineSongsPredicate()),
                UnorderedElementsAre("song", "songSynced", "songRunning", "single"));
    EXPECT_THAT(idsWhere(dao().offlineAlbumsPredicate()), ElementsAre("album"));
    EXPECT_THAT(idsWhere(dao().offlinePlaylistsPredicate()), ElementsAre("playlist"));
    EXPECT_THAT(idsWhere(dao().allDownloadsCompletedPredicate()),
                UnorderedElementsAre("song", "songSynced", "songCached", "single", "ofAlbum",
                                     "ofPlaylist"));
    EXPECT_EQ(dao().offlineDownloadsCount(), 6);

    // The id lists are those of their predicates.
    EXPECT_THAT(dao().unsyncedDownloadsIds(),
                UnorderedElementsAreArray(idsWhere(dao().unsyncedDownloadsPredicate())));
    EXPECT_THAT(dao().offlineIds(),
                UnorderedElementsAreArray(idsWhere(dao().offlineIdsPredicate())));
    // The cached list comes newest first; rows without a date sort last.
    const auto cached = dao().cachedItems();
    ASSERT_TRUE(cached);
    auto newestFirst = idsOf(*cached);
    ASSERT_EQ(newestFirst.size(), 8u);
    newestFirst.resize(6);
    EXPECT_THAT(newestFirst,
                ElementsAre("song", "songSynced", "songRunning", "songCached", "album", "single"));
}

TEST_F(ItemDAOQueriesTest, TheOfflineOrdersAreNewestOldestAndByArtist) {
    for (auto [id, date, artist] : {std::tuple{"b", 200, "Zed"}, std::tuple{"a", 300, "Abba"},
                                    std::tuple{"c", 100, "Moby"}}) {
        insertRow(
            with(downloadedSong(id, true, date), [a = artist](Item& row) { row.artist = a; }));
    }
    const auto order = [&](category::OfflineSorting sorting) {
        return idsWhere(dao().offlineSongsPredicate(), {dao().sortDescriptorFor(sorting)});
    };
    EXPECT_THAT(order(category::OfflineSorting::newest), ElementsAre("a", "b", "c"));
    EXPECT_THAT(order(category::OfflineSorting::oldest), ElementsAre("c", "b", "a"));
    EXPECT_THAT(order(category::OfflineSorting::alphabetical), ElementsAre("a", "c", "b"));
    // Any other value counts as newest.
    EXPECT_THAT(order(static_cast<category::OfflineSorting>(7)), ElementsAre("a", "b", "c"));
}

TEST_F(ItemDAOQueriesTest, OfflinePlaylistsComeWithTheirTrackCountsRefreshedButNotSaved) {
    for (const auto& [id, date] : {std::pair{"p1", 10}, std::pair{"p2", 20}}) {
        insertRow(with(playlist(id, {}), [date = date](Item& row) {
            row.downloaded = true;
            row.downloadDate = date;
        }));
    }
    PlaylistTracks::saveEntryForPlaylist(saving(), "p1", "t1", 0);
    PlaylistTracks::saveEntryForPlaylist(saving(), "p1", "t2", 1);
    PlaylistTracks::saveEntryForPlaylist(saving(), "p2", "t1", 0);

    const auto rows = dao().offlinePlaylists(category::OfflineSorting::oldest);
    ASSERT_TRUE(rows);
    EXPECT_THAT(idsOf(*rows), ElementsAre("p1", "p2"));
    EXPECT_EQ((*rows)[0]->playlistTracksCount, 2);
    EXPECT_EQ((*rows)[1]->playlistTracksCount, 1);
    EXPECT_THAT(savedColumn("Item", "playlistTracksCount", "itemID IN ('p1','p2')"),
                ElementsAre("0", "0"));
}

TEST_F(ItemDAOQueriesTest,
       TheOfflineSearchFindsDownloadedMusicByTitleOrArtistWithoutCaseOrAccents) {
    insertRow(with(downloadedSong("bjork", true), [](Item& row) { row.artist = "Björk"; }));
    insertRow(with(downloadedSong("title", true),
                   [](Item& row) { row.title = "Army of Me (BJORK remix)"; }));
    insertRow(with(albumTrack("track", "album"), [](Item& row) {
        row.downloaded = true;
        row.title = "bjork live";
    }));
    insertRow(song("notDownloaded", "Bjork", "x"));
    insertRow(with(downloadedSong("cached", true), [](Item& row) {
        row.artist = "Bjork";
        row.cached = true;
    }));
    insertRow(with(playlist("list", {}), [](Item& row) {
        row.downloaded = true;
        row.title = "Bjork mix";
    }));

    EXPECT_THAT(idsWhere(dao().offlineSearchPredicateFor("bJö")),
                UnorderedElementsAre("bjork", "title", "track"));
    EXPECT_THAT(idsWhere(dao().offlineSearchPredicateFor("zz")), IsEmpty());
    // The query is a value, not a pattern.
    EXPECT_THAT(idsWhere(dao().offlineSearchPredicateFor("%")), IsEmpty());
}

TEST_F(ItemDAOQueriesTest, DownloadStatesAreReadFromTheRowsAndAnEmptyIdIsNone) {
    insertRow(downloadedSong("done", true));
    insertRow(downloadedSong("running", false));
    insertRow(song("plain"));
    insertRow(song(""))->downloaded = true;
    store().save();

    EXPECT_TRUE(dao().isDownloaded("done"));
    EXPECT_TRUE(dao().isDownloaded("running"));
    EXPECT_FALSE(dao().isDownloaded("plain"));
    EXPECT_FALSE(dao().isDownloaded("absent"));
    EXPECT_FALSE(dao().isDownloaded(""));
    EXPECT_TRUE(dao().isDownloadCompleted("done"));
    EXPECT_FALSE(dao().isDownloadCompleted("running"));
    EXPECT_FALSE(dao().isDownloadCompleted(""));

    EXPECT_EQ(dao().countDownloadedTracks({"done", "running", "plain", "absent"}), 1);
    EXPECT_EQ(dao().countDownloadedTracks({"done", ""}), 0);
    EXPECT_EQ(dao().countDownloadedTracks({}), 0);

    EXPECT_EQ(dao().findByID("plain")->itemID, "plain");
    EXPECT_EQ(dao().findByID(""), nullptr);
    EXPECT_EQ(dao().findByID("absent"), nullptr);
}

TEST_F(ItemDAOQueriesTest, ADownloadedFileIsOkOnlyAbove10240Bytes) {
    const auto item = song("file");
    const std::string path = item->localFileURL(documents());
    EXPECT_FALSE(dao().isDownloadedFileOkFor(*item));
    writeBytes(path, 10240);
    EXPECT_FALSE(dao().isDownloadedFileOkFor(*item));
    writeBytes(path, 10241);
    EXPECT_TRUE(dao().isDownloadedFileOkFor(*item));
    fs::remove(path);
    fs::create_directory(path);  // a folder has no file size
    EXPECT_FALSE(dao().isDownloadedFileOkFor(*item));
}

TEST_F(ItemDAOQueriesTest, AHostileIdNamesAFileInsideTheDocumentsFolderOnly) {
    fs::create_directories(documents() + "/sub");
    for (const std::string id : {"../escape", "../../etc/passwd", "sub/../../x", "..", "/abs"}) {
        const auto item = song(id);
        const fs::path path = item->localFileURL(documents());
        EXPECT_EQ(path.parent_path(), fs::path(documents())) << id;
        EXPECT_EQ(path.filename().string().find('/'), std::string::npos) << id;
    }
    // A big file where an id would point, were it a path, is not taken for its download.
    for (const std::string id : {"../escape", "sub/../../x"}) {
        writeBytes(fs::weakly_canonical(fs::path(documents()) / (id + ".mp3")).string(), 20000);
        EXPECT_FALSE(dao().isDownloadedFileOkFor(*song(id))) << id;
    }
}

TEST_F(ItemDAOQueriesTest, AnAlbumIsCompleteWhenEveryStoredTrackIsAndAnAlbumWithoutTracksIs) {
    auto first = insertRow(downloadedSong("t1", true));
    auto second = insertRow(downloadedSong("t2", false));
    const auto albumOf = [](const std::string& id, const std::string& trackIDs) {
        auto item = album(id, {});
        item->tracksIDs = trackIDs;
        item->downloaded = true;
        return insertRow(item);
    };
    auto none = albumOf("none", "");
    auto partial = albumOf("partial", "t1,t2");
    auto whole = albumOf("whole", "t1,,missing");
    auto notWanted = albumOf("notWanted", "t1");
    notWanted->downloaded = false;
    notWanted->didChange();
    store().save();

    EXPECT_TRUE(dao().isAlbumFullyDownloaded(none));
    EXPECT_FALSE(dao().isAlbumFullyDownloaded(partial));
    // A listed id without a row drops out of the tracks.
    EXPECT_TRUE(dao().isAlbumFullyDownloaded(whole));
    EXPECT_THAT(idsOf(whole->tracks), ElementsAre("t1"));
    EXPECT_FALSE(dao().isAlbumFullyDownloaded(notWanted));
    EXPECT_FALSE(dao().isAlbumFullyDownloaded(album("noRow", {song("t1")})));

    second->downloadCompleted = true;
    second->didChange();
    store().save();
    partial->tracks.clear();
    EXPECT_TRUE(dao().isAlbumFullyDownloaded(partial));
    EXPECT_TRUE(dao().isDownloadCompletedIdependentlyFromTypeFor(partial));
}

TEST_F(ItemDAOQueriesTest, APlaylistIsCompleteWhenItsListedTracksAreAndNeverWithoutEntries) {
    insertRow(downloadedSong("t1", true));
    insertRow(downloadedSong("t2", true));
    auto list = insertRow(playlist("list", {}));
    list->downloaded = true;
    list->didChange();
    store().save();

    EXPECT_FALSE(dao().isPlaylistFullyDownloaded(list));  // no entries
    PlaylistTracks::saveEntryForPlaylist(saving(), "list", "t1", 0);
    PlaylistTracks::saveEntryForPlaylist(saving(), "list", "t2", 1);
    EXPECT_TRUE(dao().isPlaylistFullyDownloaded(list));
    EXPECT_TRUE(dao().isDownloadCompletedIdependentlyFromTypeFor(list));
    EXPECT_FALSE(dao().isPlaylistFullyDownloaded(playlist("noRow", {})));

    // One track listed twice: the count of rows never reaches the length of the list.
    PlaylistTracks::saveEntryForPlaylist(saving(), "list", "t1", 2);
    EXPECT_FALSE(dao().isPlaylistFullyDownloaded(list));
}

TEST_F(ItemDAOQueriesTest, WhatIsBeingDownloadedIsToldByKind) {
    auto& transfers = TBMusicDownloadManager::sharedManager();
    auto t1 = insertRow(downloadedSong("t1", false));
    auto list = insertRow(playlist("list", {}));
    PlaylistTracks::saveEntryForPlaylist(saving(), "list", "t1", 0);
    auto albumItem = album("album", {song("a1"), song("a2")});

    EXPECT_FALSE(dao().isBeingDownloadedIndependentlyFromTypeFor(t1));
    EXPECT_FALSE(dao().isBeingDownloadedIndependentlyFromTypeFor(list));
    transfers.setItemBeingDownloaded("t1", false);
    transfers.setItemBeingDownloaded("a2", false);
    EXPECT_TRUE(dao().isBeingDownloadedIndependentlyFromTypeFor(t1));
    // The playlist's items come from the store; the album's tracks are taken as they are.
    EXPECT_TRUE(dao().isBeingDownloadedIndependentlyFromTypeFor(list));
    EXPECT_THAT(idsOf(list->items), ElementsAre("t1"));
    EXPECT_TRUE(dao().isBeingDownloadedIndependentlyFromTypeFor(albumItem));
    EXPECT_FALSE(dao().isBeingDownloadedIndependentlyFromTypeFor(album("empty", {})));
    transfers.setItemBeingDownloaded("t1", true);
    EXPECT_FALSE(dao().isBeingDownloadedIndependentlyFromTypeFor(list));
}

TEST_F(ItemDAOQueriesTest, AFailedDownloadIsWantedUnfinishedAndIdle) {
    auto& transfers = TBMusicDownloadManager::sharedManager();
    auto failed = insertRow(downloadedSong("failed", false));
    auto done = insertRow(downloadedSong("done", true));
    EXPECT_TRUE(dao().isDownloadFailedFor(failed));
    EXPECT_FALSE(dao().isDownloadFailedFor(done));
    EXPECT_FALSE(dao().isDownloadFailedFor(song("noRow")));
    transfers.setItemBeingDownloaded("failed", false);
    EXPECT_FALSE(dao().isDownloadFailedFor(failed));

    auto albumItem = album("album", {});
    albumItem->tracksIDs = "failed,done";
    albumItem->downloaded = true;
    auto albumRow = insertRow(albumItem);
    EXPECT_FALSE(dao().isDownloadFailedFor(albumRow));  // a track is running
    transfers.setItemBeingDownloaded("failed", true);
    EXPECT_TRUE(dao().isDownloadFailedFor(albumRow));
    failed->downloadCompleted = true;
    failed->didChange();
    store().save();
    EXPECT_FALSE(dao().isDownloadFailedFor(albumRow));
}

TEST_F(ItemDAOQueriesTest, ImageURLsFallBackToTheMainImageOnlyWhenEmpty) {
    Item item;
    item.image = "main";
    item.smallImage = "";
    item.originalImage = "original";
    EXPECT_EQ(dao().getImageUrlForPresetFrom(item, 0), "main");
    EXPECT_EQ(dao().getImageUrlForPresetFrom(item, 1), "original");
    EXPECT_EQ(dao().getImageUrlForPresetFrom(item, 2), "main");
    EXPECT_EQ(dao().getImageUrlForPresetFrom(item, -1), "main");
    item.smallImage.reset();
    item.originalImage = "";
    EXPECT_EQ(dao().getImageUrlForPresetFrom(item, 0), std::nullopt);
    EXPECT_EQ(dao().getImageUrlForPresetFrom(item, 1), "main");
    item.image.reset();
    EXPECT_EQ(dao().getImageUrlForPresetFrom(item, 1), std::nullopt);
    EXPECT_EQ(dao().getImageUrlForPresetFrom(item, 5), std::nullopt);
}

TEST_F(ItemDAOQueriesTest, APlaylistContainsATrackByItsId) {
    auto list = playlist("list", {song("a"), song("b")});
    EXPECT_TRUE(dao().playlistContainsTrackFor(*list, *song("b")));
    EXPECT_FALSE(dao().playlistContainsTrackFor(*list, *song("c")));
    Item nameless;
    list->items.push_back(std::make_shared<Item>());
    EXPECT_FALSE(dao().playlistContainsTrackFor(*list, nameless));
    EXPECT_FALSE(dao().playlistContainsTrackFor(*playlist("empty", {}), *song("a")));
}

TEST(ItemDAOWithoutStoreTest, EveryQueryIsEmptyAndEveryWriteDoesNothing) {
    TestPlatform device;  // no startup: no context
    ItemDAO& dao = device.context().itemDAO();
    TBCoreDataManager& saving = device.context().coreDataManager();
    auto item = downloadedSong("a", true);
    EXPECT_EQ(dao.newItem(), nullptr);
    EXPECT_EQ(dao.saveItem(item), item);
    EXPECT_EQ(dao.findByID("a"), nullptr);
    EXPECT_FALSE(dao.cachedItems());
    EXPECT_FALSE(dao.offlinePlaylists(category::OfflineSorting::newest));
    EXPECT_EQ(dao.countDownloadedTracks({"a"}), 0);
    EXPECT_FALSE(dao.isDownloaded("a"));
    EXPECT_FALSE(dao.isDownloadCompleted("a"));
    EXPECT_FALSE(dao.isAlbumFullyDownloaded(album("b", {})));
    EXPECT_FALSE(dao.isPlaylistFullyDownloaded(playlist("c", {})));
    EXPECT_THAT(dao.offlineIds(), IsEmpty());
    EXPECT_EQ(dao.offlineDownloadsCount(), 0);
    EXPECT_THAT(dao.unsyncedDownloadsIds(), IsEmpty());
    EXPECT_THAT(PlaylistTracks::tracksForPlaylist(saving, "c"), IsEmpty());
    EXPECT_EQ(PlaylistTracks::playlistsTrackCount(saving, "c"), 0);
    dao.markAsDownloaded("a");
    dao.markAsDownloadCompleted("a");
    dao.markItemsAsSynced("a,b");
    dao.removeDuplicateWithID("a");
    PlaylistTracks::saveEntryForPlaylist(saving, "c", "a", 0);
    PlaylistTracks::savePlaylist(saving, *playlist("c", {song("a")}));
    EXPECT_TRUE(device.errors.records.empty());
    EXPECT_FALSE(fs::exists(storePathOf(device)));
}

}  // namespace
}  // namespace tb::test
