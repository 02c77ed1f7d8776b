// The table of offline playlist entries.

#include "model/PlaylistTracks.h"
#include "model/store/ObjectContext.h"
#include "support/DaoTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PlaylistTracksTest : public DaoTest {
  protected:
    std::vector<std::string> entriesOf(const std::string& playlistId) {
        std::vector<std::string> entries;
        for (const auto& row : PlaylistTracks::tracksForPlaylist(saving(), playlistId)) {
            entries.push_back(row->trackId.value_or("<nil>") + ":" + std::to_string(row->number));
        }
        return entries;
    }
};

TEST_F(PlaylistTracksTest, SavingAPlaylistReplacesItsEntriesNumberedFromZeroAndSavesEach) {
    PlaylistTracks::saveEntryForPlaylist(saving(), "p", "old", 7);
    PlaylistTracks::saveEntryForPlaylist(saving(), "other", "a", 0);
    PlaylistTracks::savePlaylist(saving(), *playlist("p", {song("a"), song("b"), song("a")}));
    EXPECT_THAT(entriesOf("p"), ElementsAre("a:0", "b:1", "a:2"));
    EXPECT_THAT(savedColumn("PlaylistTracks", "playlistId || trackId || number"),
                ElementsAre("othera0", "pa0", "pb1", "pa2"));
    EXPECT_FALSE(store().hasChanges());

    // No items: no entries, and nothing saved (the delete waits for the caller's save).
    PlaylistTracks::savePlaylist(saving(), *playlist("p", {}));
    EXPECT_THAT(entriesOf("p"), IsEmpty());
    EXPECT_EQ(PlaylistTracks::playlistsTrackCount(saving(), "p"), 0);
    EXPECT_EQ(savedColumn("PlaylistTracks", "trackId", "playlistId = 'p'").size(), 3u);
}

TEST_F(PlaylistTracksTest, EntriesComeInNumberOrderAndEntriesAreNeverMerged) {
    PlaylistTracks::saveEntryForPlaylist(saving(), "p", "c", 5);
    PlaylistTracks::saveEntryForPlaylist(saving(), "p", "a", 0);
    PlaylistTracks::saveEntryForPlaylist(saving(), "p", "a", 0);
    PlaylistTracks::saveEntryForPlaylist(saving(), "q", "a", 3);
    EXPECT_THAT(entriesOf("p"), ElementsAre("a:0", "a:0", "c:5"));
    EXPECT_EQ(PlaylistTracks::playlistsTrackCount(saving(), "p"), 3);
    EXPECT_THAT(PlaylistTracks::playlistsThatContain(saving(), "a"), ElementsAre("p", "p", "q"));
    EXPECT_THAT(PlaylistTracks::playlistsThatContain(saving(), "zzz"), IsEmpty());
    EXPECT_EQ(PlaylistTracks::playlistsTrackCount(saving(), "zzz"), 0);
}

TEST_F(PlaylistTracksTest, DeletesLeaveGapsAndWaitForTheCallersSave) {
    PlaylistTracks::savePlaylist(saving(), *playlist("p", {song("a"), song("b"), song("c")}));
    PlaylistTracks::savePlaylist(saving(), *playlist("q", {song("b")}));
    PlaylistTracks::deleteTrack(saving(), "b", "p");
    EXPECT_THAT(entriesOf("p"), ElementsAre("a:0", "c:2"));
    EXPECT_THAT(entriesOf("q"), ElementsAre("b:0"));
    PlaylistTracks::deletePlaylist(saving(), "q");
    EXPECT_THAT(entriesOf("q"), IsEmpty());
    EXPECT_EQ(savedColumn("PlaylistTracks", "trackId").size(), 4u);

    store().save();
    EXPECT_THAT(savedColumn("PlaylistTracks", "trackId || number"), ElementsAre("a0", "c2"));
}

}  // namespace
}  // namespace tb::test
