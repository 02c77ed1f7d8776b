#include <memory>
#include <string>
#include <vector>

#include "model/Item.h"
#include "support/DaoTestSupport.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

constexpr const char* kWeb = "https://tunebrook.test";

Item withFlags(bool song,
               bool album,
               bool playlist,
               bool albumTrack,
               bool playlistTrack,
               bool userPlaylist) {
    Item item;
    item.isSong = song;
    item.isAlbum = album;
    item.isPlaylist = playlist;
    item.isAlbumTrack = albumTrack;
    item.isPlaylistTrack = playlistTrack;
    item.isUserPlaylist = userPlaylist;
    return item;
}

Item ofType(ItemType type) {
    const int t = static_cast<int>(type);
    return withFlags(t == 0, t == 1, t == 2, t == 3, t == 4, t == 5);
}

TEST(ItemTest, ItemTypeTestsTheFlagsInOrder) {
    EXPECT_EQ(withFlags(false, false, false, false, false, false).itemType(), ItemType::unknown);
    // Each flag alone.
    for (int t = 0; t < 6; ++t) {
        EXPECT_EQ(ofType(static_cast<ItemType>(t)).itemType(), static_cast<ItemType>(t));
    }
    // An earlier flag wins over every later one.
    EXPECT_EQ(withFlags(true, false, false, true, false, false).itemType(), ItemType::song);
    EXPECT_EQ(withFlags(false, true, true, true, true, true).itemType(), ItemType::album);
    EXPECT_EQ(withFlags(false, false, true, false, false, true).itemType(), ItemType::playlist);
    EXPECT_EQ(withFlags(false, false, false, true, true, false).itemType(), ItemType::albumTrack);
    EXPECT_EQ(withFlags(false, false, false, false, true, true).itemType(),
              ItemType::playlistTrack);
}

TEST(ItemTest, ShareUrlUsesThePathOfTheKind) {
    const auto shareOf = [](ItemType type, const std::string& base = kWeb) {
        Item item = ofType(type);
        item.uploaderSlug = "ama-k";
        item.urlSlug = "harmattan";
        return item.shareURL(base);
    };
    EXPECT_EQ(shareOf(ItemType::song), "https://tunebrook.test/song/ama-k/harmattan");
    EXPECT_EQ(shareOf(ItemType::albumTrack), "https://tunebrook.test/song/ama-k/harmattan");
    EXPECT_EQ(shareOf(ItemType::playlistTrack), "https://tunebrook.test/song/ama-k/harmattan");
    EXPECT_EQ(shareOf(ItemType::album), "https://tunebrook.test/album/ama-k/harmattan");
    EXPECT_EQ(shareOf(ItemType::playlist), "https://tunebrook.test/playlist/ama-k/harmattan");
    EXPECT_EQ(shareOf(ItemType::userPlaylist), std::nullopt);
    EXPECT_EQ(shareOf(ItemType::unknown), std::nullopt);
    EXPECT_EQ(shareOf(ItemType::song, "https://tunebrook.test/"),
              "https://tunebrook.test/song/ama-k/harmattan");
    // Both slugs are needed.
    Item item = ofType(ItemType::song);
    item.urlSlug = "harmattan";
    EXPECT_EQ(item.shareURL(kWeb), std::nullopt);
    item.uploaderSlug = "ama-k";
    item.urlSlug.reset();
    EXPECT_EQ(item.shareURL(kWeb), std::nullopt);
}

TEST(ItemTest, TypeForHighlightingCallsTracksSongs) {
    Item track = ofType(ItemType::albumTrack);
    track.type = "album";
    EXPECT_EQ(track.typeForHighlightingAPI(), "song");
    Item playlistTrack = ofType(ItemType::playlistTrack);
    EXPECT_EQ(playlistTrack.typeForHighlightingAPI(), "song");

    Item album = ofType(ItemType::album);
    album.type = "album";
    EXPECT_EQ(album.typeForHighlightingAPI(), "album");
    EXPECT_EQ(ofType(ItemType::song).typeForHighlightingAPI(), "");  // no type
}

TEST(ItemTest, TakenDownOnlyForTheThreeStatuses) {
    Item item;
    for (const char* status : {"suspended", "takedown", "unplayable"}) {
        item.status = status;
        EXPECT_TRUE(item.isTakenDown()) << status;
    }
    for (const char* status : {"active", "", "Takedown", "suspended "}) {
        item.status = status;
        EXPECT_FALSE(item.isTakenDown()) << status;
    }
    item.status.reset();
    EXPECT_FALSE(item.isTakenDown());
}

TEST(ItemTest, UploadedByMyselfIsATestOfPlaylistsOnly) {
    Item playlist = ofType(ItemType::playlist);
    playlist.uploaderSlug = "me";
    EXPECT_TRUE(playlist.isUploadedByMyself(true, std::string("me")));
    EXPECT_FALSE(playlist.isUploadedByMyself(false, std::string("me")));
    EXPECT_FALSE(playlist.isUploadedByMyself(true, std::string("someone")));
    EXPECT_FALSE(playlist.isUploadedByMyself(true, std::nullopt));

    playlist.uploaderSlug.reset();
    EXPECT_TRUE(playlist.isUploadedByMyself(true, std::nullopt));  // both nil are equal

    Item song = ofType(ItemType::song);
    song.uploaderSlug = "me";
    EXPECT_FALSE(song.isUploadedByMyself(true, std::string("me")));

    Item mine = ofType(ItemType::userPlaylist);
    mine.uploaderSlug = "me";
    EXPECT_FALSE(mine.isUploadedByMyself(true, std::string("me")));
}

TEST(ItemTest, LocalFileIsTheSafeIdWithMp3InTheDocuments) {
    Item item;
    item.itemID = "4815162";
    EXPECT_EQ(item.localFileURL("/data/docs"), "/data/docs/4815162.mp3");

    item.itemID = "../../etc/passwd";
    EXPECT_EQ(item.localFileURL("/data/docs"), "/data/docs/%2E.%2F..%2Fetc%2Fpasswd.mp3");
    item.itemID = "..";
    EXPECT_EQ(item.localFileURL("/data/docs"), "/data/docs/%2E..mp3");
    item.itemID.reset();
    EXPECT_EQ(item.localFileURL("/data/docs"), "/data/docs/%.mp3");
}

TEST(ItemTest, AvailableEntriesLeaveOutRestrictedOnes) {
    Item album;
    for (int i = 0; i < 4; ++i) {
        auto track = std::make_shared<Item>();
        track->itemID = std::to_string(i);
        track->georestricted = i % 2 == 1;
        album.tracks.push_back(track);
        album.items.push_back(track);
    }
    album.tracks.push_back(nullptr);
    EXPECT_EQ(test::idsOf(album.availableTracks()), (std::vector<std::string>{"0", "2"}));
    EXPECT_EQ(test::idsOf(album.availableItems()), (std::vector<std::string>{"0", "2"}));
    EXPECT_TRUE(Item().availableItems().empty());
}

}  // namespace
}  // namespace tb
