// A process killed in the middle of the DAO's saves: the next launch opens the store without
// an error and finds every row whose save was over.

#include <chrono>
#include <cstdio>
#include <random>
#include <set>
#include <sstream>

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

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

std::string readUntil(int fd, std::chrono::steady_clock::time_point deadline) {
    std::string read;
    char buffer[4096];
    while (std::chrono::steady_clock::now() < deadline) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd ready{fd, POLLIN, 0};
        if (poll(&ready, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0))) <= 0) {
            continue;
        }
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got <= 0) {
            break;
        }
        read.append(buffer, static_cast<std::size_t>(got));
    }
    return read;
}

// Whole lines only: a line the kill cut short is no report.
std::set<std::string> reportedIds(const std::string& reported) {
    std::set<std::string> ids;
    std::istringstream lines(reported.substr(0, reported.rfind('\n') + 1));
    for (std::string line; std::getline(lines, line);) {
        ids.insert(line);
    }
    return ids;
}

TEST(DaoProcessTest, AKillInTheMiddleOfDaoSavesLeavesAStoreThatOpensWithEverySavedRow) {
    std::random_device seedSource;
    const unsigned seed = seedSource();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> delay(20, 300);

    for (int round = 0; round < 3; ++round) {
        TestPlatform device;
        int fds[2];
        ASSERT_EQ(pipe(fds), 0);
        const pid_t pid = fork();
        if (pid == 0) {
            close(fds[0]);
            downloadForEver(device, fds[1]);
        }
        close(fds[1]);
        std::string reported = readUntil(
            fds[0], std::chrono::steady_clock::now() + std::chrono::milliseconds(delay(random)));
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        reported +=
            readUntil(fds[0], std::chrono::steady_clock::now() + std::chrono::milliseconds(50));
        close(fds[0]);
        const auto saved = reportedIds(reported);

        Launch next(device);
        next.startup();
        EXPECT_TRUE(device.errors.records.empty()) << "round " << round;
        ASSERT_NE(next.store(), nullptr);
        const auto stored = next.dao().fetch(next.dao().allDownloadsCompletedPredicate());
        ASSERT_TRUE(stored);
        std::set<std::string> complete;
        for (const auto& row : *stored) {
            complete.insert(*row->itemID);
        }
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
