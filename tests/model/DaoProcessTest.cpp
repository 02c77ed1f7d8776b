// A process killed in the middle of the DAO's saves: the next launch opens the store without
// an error and finds every row whose save was over.

#include <cstdio>
#include <random>
#include <set>

#include "model/ItemDAO.h"
#include "model/PlaylistTracks.h"
#include "model/store/ObjectContext.h"
#include "support/DaoTestSupport.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

// Downloads songs for ever: each is saved, marked complete and listed in a playlist; the
// id is reported once its last save is over.
[[noreturn]] void downloadForEver(TestPlatform& device, int out) {
    Launch launch(device);
    launch.startup();
    for (int n = 0;; ++n) {
        const std::string id = "s" + std::to_string(n);
        auto item = downloadedSong(id, false);
        item->title = std::string(400, 't');
        launch.dao().saveItem(item);
        launch.dao().markAsDownloadCompleted(id);
        PlaylistTracks::saveEntryForPlaylist(launch.policy(), "p", id, n);
        if (device.errors.records.empty()) {
            writeToParent(out, id + "\n");
        }
    }
}

TEST(DaoProcessTest, AKillInTheMiddleOfDaoSavesLeavesAStoreThatOpensWithEverySavedRow) {
    std::random_device seedSource;
    const unsigned seed = seedSource();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> delay(20, 300);

    for (int round = 0; round < 3; ++round) {
        TestPlatform device;
        const auto saved =
            linesBeforeKill([&](int out) { downloadForEver(device, out); }, delay(random));

        Launch next(device);
        next.startup();
        EXPECT_TRUE(device.errors.records.empty()) << "round " << round;
        ASSERT_NE(next.store(), nullptr);
        const auto stored = next.dao().fetch(next.dao().allDownloadsCompletedPredicate());
        ASSERT_TRUE(stored);
        const auto ids = idsOf(*stored);
        const std::set<std::string> complete(ids.begin(), ids.end());
        for (const std::string& id : saved) {
            EXPECT_TRUE(complete.count(id))
                << id << " was saved but is gone (round " << round << ")";
            EXPECT_EQ(PlaylistTracks::playlistsThatContain(next.policy(), id),
                      std::vector<std::string>{"p"})
                << id;
        }
        EXPECT_LE(complete.size(), saved.size() + 1);
        std::printf("round %d: %zu downloads reported, %zu complete rows\n", round, saved.size(),
                    complete.size());
    }
}

}  // namespace
}  // namespace tb::test
