// What removing a download takes along, and how an album's or a playlist's tracks are
// loaded from the store.

#include <filesystem>

#include "core/TBConstants.h"
#include "model/ItemDAO.h"
#include "model/PlaylistTracks.h"
#include "model/TBUtil.h"
#include "model/store/ObjectContext.h"
#include "offline/ItemDownloadManager.h"
#include "offline/TBMusicDownloadManager.h"
#include "offline/TBOperation.h"
#include "platform/NotificationCenter.h"
#include "support/DaoTestSupport.h"
#include "support/FileContents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ItemDownloadManagerTest : public DaoTest {
  protected:
    ItemDownloadManagerTest() {
        device.context().notificationCenter().addObserver(
            TBConstants::TBGlobalNotifications().download, nullptr,
            [this](const Notification&) { ++downloadNotifications; });
    }
    // A complete download with its audio file and artwork on disk.
    ItemPtr onDevice(const ItemPtr& item) {
        item->downloaded = true;
        item->downloadCompleted = true;
        item->downloadDate = 1.7e9;
        auto row = insertRow(item);
        writeBytes(audio(*row), 20000);
        writeBytes(art(*row), 100);
        return row;
    }
    std::string audio(const Item& item) { return item.localFileURL(documents()); }
    std::string art(const Item& item) {
        return TBUtil::remoteUrlToArtworkFile(*item.image, documents());
    }
    bool onDisk(const Item& item) { return fs::exists(audio(item)) || fs::exists(art(item)); }
    std::vector<std::string> storedIds() { return savedColumn("Item", "itemID"); }

    ItemDownloadManager& manager = device.context().itemDownloads();
    int downloadNotifications = 0;
};

TEST_F(ItemDownloadManagerTest, RemovingASongTakesItsFileArtworkAndRow) {
    auto row = onDevice(song("s"));
    onDevice(song("other"));
    manager.removeDownloadOf(row, true);
    EXPECT_FALSE(onDisk(*row));
    EXPECT_THAT(storedIds(), ElementsAre("other"));
    EXPECT_EQ(downloadNotifications, 1);
    EXPECT_TRUE(device.errors.records.empty());
}

TEST_F(ItemDownloadManagerTest, KeepingTheRowClearsItsDownloadAndItsDate) {
    auto row = onDevice(albumTrack("t", "album"));
    manager.removeDownloadOf(row, false);
    EXPECT_FALSE(onDisk(*row));
    EXPECT_THAT(savedColumn("Item",
                            "itemID || downloaded || downloadCompleted || "
                            "ifnull(downloadDate, 'nil')"),
                ElementsAre("t00nil"));
}

TEST_F(ItemDownloadManagerTest, RemovingAPlaylistTakesEveryListedTrackEvenOneSharedWithAnother) {
    auto list = onDevice(playlist("p", {}));
    auto a = onDevice(playlistTrack("a", "p"));
    auto b = onDevice(playlistTrack("b", "p"));
    auto keep = onDevice(song("keep"));
    PlaylistTracks::savePlaylist(saving(), *playlist("p", {a, b}));
    PlaylistTracks::savePlaylist(saving(), *playlist("q", {b}));

    manager.removeDownloadOf(list, true);
    EXPECT_THAT(storedIds(), ElementsAre("keep"));
    for (const auto& gone : {list, a, b}) {
        EXPECT_FALSE(onDisk(*gone)) << *gone->itemID;
    }
    EXPECT_TRUE(onDisk(*keep));
    EXPECT_THAT(PlaylistTracks::tracksForPlaylist(saving(), "p"), IsEmpty());
    EXPECT_EQ(PlaylistTracks::playlistsTrackCount(saving(), "q"),
              1);  // no reference count, knowingly
    EXPECT_FALSE(b->downloaded);
    EXPECT_EQ(downloadNotifications, 1);
}

TEST_F(ItemDownloadManagerTest, RemovingAnAlbumReloadsItsTracksFromTheStoreFirst) {
    auto t1 = onDevice(albumTrack("t1", "al"));
    auto t2 = onDevice(albumTrack("t2", "al"));
    auto item = album("al", {t1, t2});
    auto row = onDevice(item);
    row->tracks = {song("stale")};  // forced: the stored rows count, not what it holds
    manager.removeDownloadOf(row, true);
    EXPECT_THAT(storedIds(), IsEmpty());
    EXPECT_FALSE(onDisk(*t1));
    EXPECT_FALSE(onDisk(*t2));
}

TEST_F(ItemDownloadManagerTest, ARefusedSaveIsReportedAsRemoveAndNothingIsAnnounced) {
    auto row = onDevice(song("locked"));
    queryColumn(storePathOf(device),
                "CREATE TRIGGER refuse BEFORE DELETE ON Item BEGIN SELECT RAISE(ABORT, 'no'); END");
    manager.removeDownloadOf(row, true);
    EXPECT_THAT(reportedSaveFailures(), ElementsAre("19 remove"));
    EXPECT_EQ(downloadNotifications, 0);
    EXPECT_FALSE(onDisk(*row));  // the files went before the save
}

TEST_F(ItemDownloadManagerTest, AnAudioFileThatCantBeDeletedIsRecordedAndTheRestGoesOn) {
    auto row = onDevice(song("s"));
    fs::remove(audio(*row));
    fs::create_directories(audio(*row) + "/inside");  // a folder that is not empty
    manager.removeDownloadOf(row, true);
    ASSERT_EQ(device.errors.records.size(), 1u);
    EXPECT_EQ(device.errors.records[0].error.userInfo.at("NSFilePath"), audio(*row));
    EXPECT_THAT(storedIds(), IsEmpty());
    EXPECT_FALSE(fs::exists(art(*row)));
}

TEST_F(ItemDownloadManagerTest, RemovingAPlaylistButKeepingItsTracksTakesOnlyItsRowAndArtwork) {
    auto list = onDevice(playlist("p", {}));
    auto a = onDevice(playlistTrack("a", "p"));
    PlaylistTracks::savePlaylist(saving(), *playlist("p", {a}));
    manager.removePlaylistAndKeepTracks(list);
    EXPECT_THAT(storedIds(), ElementsAre("a"));
    EXPECT_FALSE(fs::exists(art(*list)));
    EXPECT_TRUE(onDisk(*a));
    EXPECT_EQ(downloadNotifications, 1);
}

TEST_F(ItemDownloadManagerTest, AlbumTracksComeInTheOrderOfTheirIdsAndUnknownIdsDropOut) {
    insertRow(song("x"));
    insertRow(song("y"));
    auto item = album("al", {});
    item->tracksIDs = "y,,missing,x";
    manager.loadAlbumTracksFor(item, false);
    EXPECT_THAT(idsOf(item->tracks), ElementsAre("y", "x"));

    item->tracks = {song("held")};
    manager.loadAlbumTracksFor(item, false);
    EXPECT_THAT(idsOf(item->tracks), ElementsAre("held"));
    manager.loadAlbumTracksFor(item, true);
    EXPECT_THAT(idsOf(item->tracks), ElementsAre("y", "x"));

    auto noIds = album("none", {song("held")});
    noIds->tracksIDs = "";
    manager.loadAlbumTracksFor(noIds, true);
    EXPECT_THAT(idsOf(noIds->tracks), ElementsAre("held"));
    auto notAnAlbum = song("s");
    notAnAlbum->tracksIDs = "x";
    manager.loadAlbumTracksFor(notAnAlbum, true);
    EXPECT_THAT(notAnAlbum->tracks, IsEmpty());
}

TEST_F(ItemDownloadManagerTest, PlaylistItemsComeInTheOrderOfTheirEntries) {
    insertRow(song("x"));
    insertRow(song("y"));
    PlaylistTracks::saveEntryForPlaylist(saving(), "p", "x", 4);
    PlaylistTracks::saveEntryForPlaylist(saving(), "p", "missing", 1);
    PlaylistTracks::saveEntryForPlaylist(saving(), "p", "y", 2);
    auto list = playlist("p", {song("stale")});
    manager.loadPlaylistItemsFor(list);
    EXPECT_THAT(idsOf(list->items), ElementsAre("y", "x"));
}

TEST_F(ItemDownloadManagerTest, TheDownloadManagerKnowsWhatIsRunningAndDropsArtwork) {
    auto& transfers = device.context().musicDownloads();
    transfers.setItemBeingDownloaded("a", false);
    transfers.setItemBeingDownloaded("b", false);
    transfers.setItemBeingDownloaded("b", true);
    EXPECT_THAT(transfers.downloadsInProgress(), ElementsAre("a"));
    EXPECT_TRUE(transfers.isItemBeingDownloaded("a"));
    EXPECT_FALSE(transfers.isItemBeingDownloaded("b"));
    EXPECT_TRUE(transfers.isAlbumBeingDownloaded(*album("al", {song("b"), song("a")})));
    EXPECT_FALSE(transfers.isAlbumBeingDownloaded(*album("al", {song("b")})));
    insertRow(song("a"));
    PlaylistTracks::saveEntryForPlaylist(saving(), "p", "a", 0);
    EXPECT_TRUE(transfers.isPlaylistBeingDownloaded(playlist("p", {})));
    EXPECT_FALSE(transfers.isPlaylistBeingDownloaded(playlist("q", {song("a")})));

    auto item = song("art");
    item->smallImage = "https://img.example/small.jpg";
    item->banner = "https://img.example/banner.jpg";
    const std::string unrelated =
        TBUtil::remoteUrlToArtworkFile("https://img.example/x.jpg", documents());
    for (const auto& url : {*item->image, *item->smallImage, *item->banner}) {
        writeBytes(TBUtil::remoteUrlToArtworkFile(url, documents()), 10);
    }
    writeBytes(unrelated, 10);
    transfers.deleteCachedImagedFor(*item);
    EXPECT_THAT(folderEntries(documents() + "/artworks"), ElementsAre("httpsimg.examplex.jpg"));
}

TEST_F(ItemDownloadManagerTest, ArtworkCachedAfterASongWaitsForIt) {
    class Parent final : public TBOperation {
      protected:
        void main() override { setState(State::executing); }
    };
    auto& transfers = device.context().musicDownloads();
    auto parent = std::make_shared<Parent>();
    transfers.operationQueue().addOperation(parent);
    transfers.cacheImages(song("s"), parent);
    device.queue.runUntilIdle();
    EXPECT_EQ(device.http.count(), 0u);
    parent->setState(TBOperation::State::finished);
    device.queue.runUntilIdle();
    EXPECT_EQ(device.http.count(), 1u);
    EXPECT_EQ(device.http.request(0).url, "https://img.example/s.jpg");
}

}  // namespace
}  // namespace tb::test
