#include <chrono>
#include <functional>
#include <thread>

#include "LoopbackListener.h"
#include "platform/ManualQueue.h"
#include "platform/linux/LinuxReachability.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

using Clock = std::chrono::steady_clock;

TEST(HostAndPortOfURLTest, ReadsHostAndPortOfServiceURLs) {
    EXPECT_EQ(hostAndPortOfURL("https://api.tunebrook.com/v1/"),
              (HostAndPort{"api.tunebrook.com", 443}));
    EXPECT_EQ(hostAndPortOfURL("HTTP://127.0.0.1:8080/api?x=1"), (HostAndPort{"127.0.0.1", 8080}));
    EXPECT_EQ(hostAndPortOfURL("http://[::1]:9000/"), (HostAndPort{"::1", 9000}));
    EXPECT_EQ(hostAndPortOfURL("https://user:pw@host.example"), (HostAndPort{"host.example", 443}));
    EXPECT_EQ(hostAndPortOfURL("custom://host:81#frag"), (HostAndPort{"host", 81}));

    for (const char* bad :
         {"", "not a url", "http://", "http://:80/", "ftp://host/", "http://host:0/",
          "http://host:70000/", "http://host:8a/", "http://[::1/", "http://[::1]x/"}) {
        EXPECT_FALSE(hostAndPortOfURL(bad)) << bad;
    }
}

class LinuxReachabilityTest : public ::testing::Test {
  protected:
    // Runs the queue until `done` or a few seconds of real time have passed.
    bool waitFor(const std::function<bool()>& done) {
        return test::waitFor(
            [&] {
                queue.runUntilIdle();
                return done();
            },
            std::chrono::seconds(10));
    }
    void settle() {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        queue.runUntilIdle();
    }

    ManualQueue queue;
    test::LoopbackListener listener;
    int reachableCalls = 0;
    int unreachableCalls = 0;
    LinuxReachability::Options fast{0.02, 0.5};
};

TEST_F(LinuxReachabilityTest, TellsTheFirstReadingAndThenOnlyChanges) {
    LinuxReachability reachability({"127.0.0.1", listener.port()}, queue, fast);
    reachability.startNotifier([&] { ++reachableCalls; }, [&] { ++unreachableCalls; });

    ASSERT_TRUE(waitFor([&] { return reachableCalls == 1; }));
    settle();  // many more tries pass; none of them is news
    EXPECT_EQ(reachableCalls, 1);
    EXPECT_EQ(unreachableCalls, 0);
    EXPECT_TRUE(reachability.isReachable());
    EXPECT_TRUE(reachability.isReachableViaWiFi()) << "loopback is no cellular link";

    listener.close();
    ASSERT_TRUE(waitFor([&] { return unreachableCalls == 1; }));
    EXPECT_FALSE(reachability.isReachable());
    EXPECT_FALSE(reachability.isReachableViaWiFi());

    listener.open(listener.port());
    ASSERT_TRUE(waitFor([&] { return reachableCalls == 2; }));
    settle();
    EXPECT_EQ(reachableCalls, 2);
    EXPECT_EQ(unreachableCalls, 1);
}

TEST_F(LinuxReachabilityTest, AHostDownFromTheStartIsToldOnceAsUnreachable) {
    const int port = listener.port();
    listener.close();
    LinuxReachability reachability({"127.0.0.1", port}, queue, fast);
    // Started late: the reading taken before is told as the first one.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    queue.runUntilIdle();
    reachability.startNotifier([&] { ++reachableCalls; }, [&] { ++unreachableCalls; });

    ASSERT_TRUE(waitFor([&] { return unreachableCalls == 1; }));
    settle();
    EXPECT_EQ(unreachableCalls, 1);
    EXPECT_EQ(reachableCalls, 0);
}

TEST_F(LinuxReachabilityTest, DestroyingStopsTheThreadAtOnceAndLateTasksDoNothing) {
    auto reachability = std::make_unique<LinuxReachability>(
        HostAndPort{"127.0.0.1", listener.port()}, queue, LinuxReachability::Options{600.0, 5.0});
    reachability->startNotifier([&] { ++reachableCalls; }, [&] { ++unreachableCalls; });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));

    const auto start = Clock::now();
    reachability.reset();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(1))
        << "the destructor waited a whole interval";
    queue.runUntilIdle();  // the first reading's task, posted before, finds the object gone
    EXPECT_EQ(reachableCalls + unreachableCalls, 0);
}

}  // namespace
}  // namespace tb
