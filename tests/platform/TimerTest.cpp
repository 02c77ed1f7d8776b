#include "platform/ManualQueue.h"
#include "platform/Timer.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(TimerTest, RepeatingTimerFiresOnceEveryIntervalOfVirtualTime) {
    ManualQueue queue;
    int fired = 0;
    auto timer = Timer::scheduled(queue, 0.1, true, [&] { ++fired; });

    queue.advanceBy(30.0);

    EXPECT_EQ(fired, 300);
    EXPECT_TRUE(timer->isValid());
}

TEST(TimerTest, InvalidatedOrDestroyedTimerNeverFiresAgain) {
    ManualQueue queue;
    int fired = 0;
    auto timer = Timer::scheduled(queue, 1.0, true, [&] { ++fired; });
    queue.advanceBy(2.5);
    timer->invalidate();
    queue.advanceBy(10.0);
    EXPECT_EQ(fired, 2);

    int firedAfterReset = 0;
    auto other = Timer::scheduled(queue, 1.0, true, [&] { ++firedAfterReset; });
    other.reset();
    queue.advanceBy(10.0);
    EXPECT_EQ(firedAfterReset, 0);
}

TEST(TimerTest, OneShotFiresOnceAndTimerMayDestroyItselfWhileFiring) {
    ManualQueue queue;
    int fired = 0;
    std::unique_ptr<Timer> timer;
    timer = Timer::scheduled(queue, 0.5, true, [&] {
        ++fired;
        timer.reset();
    });
    auto once = Timer::scheduled(queue, 0.5, false, [&] { ++fired; });

    queue.advanceBy(5.0);

    EXPECT_EQ(fired, 2);
    EXPECT_FALSE(once->isValid());
}

TEST(TimerTest, VirtualClockFollowsTheQueue) {
    ManualQueue queue(1000.0);
    double seenAt = 0;
    queue.postAfter(2.0, [&] { seenAt = queue.clock().now(); });
    queue.advanceBy(5.0);
    EXPECT_DOUBLE_EQ(seenAt, 1002.0);
    EXPECT_DOUBLE_EQ(queue.clock().now(), 1005.0);
    EXPECT_DOUBLE_EQ(queue.monotonicNow(), 5.0);
}

}  // namespace
}  // namespace tb
