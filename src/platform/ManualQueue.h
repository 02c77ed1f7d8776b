#pragma once

#include <cstdint>
#include <mutex>
#include <queue>
#include <vector>

#include "platform/Clock.h"
#include "platform/MainQueue.h"

namespace tb {

// A main queue on virtual time, for tests. Nothing runs until the test says so:
// runUntilIdle() runs what is due now, advanceBy() moves time forward and runs every task
// that falls due on the way, each at its own moment. Time is kept in whole nanoseconds so
// that a 0.1 s timer fires exactly 300 times in 30 s.
class ManualQueue final : public MainQueue {
  public:
    explicit ManualQueue(double startWallTime = 1'700'000'000.0);

    void post(Task task) override;
    void postAfter(double delaySeconds, Task task) override;
    double monotonicNow() const override;
    bool isCurrent() const override;  // always true: tests drive the queue from their thread

    // Runs the tasks due now, including those they post for now, until none is left.
    void runUntilIdle();

    // Moves virtual time forward by `seconds`, running each task when its time comes.
    void advanceBy(double seconds);

    // Tasks waiting, due now or later.
    std::size_t pendingTaskCount() const;

    // The clock that follows virtual time (wall and monotonic move together).
    ManualClock& clock() { return clock_; }

  private:
    struct Entry {
        std::int64_t dueNanos;
        std::uint64_t sequence;
        Task task;
    };
    struct Later {
        bool operator()(const Entry& a, const Entry& b) const {
            return a.dueNanos != b.dueNanos ? a.dueNanos > b.dueNanos : a.sequence > b.sequence;
        }
    };

    bool runNextDueBy(std::int64_t limitNanos);

    ManualClock clock_;
    std::int64_t nowNanos_ = 0;
    mutable std::mutex mutex_;
    std::priority_queue<Entry, std::vector<Entry>, Later> tasks_;
    std::uint64_t nextSequence_ = 0;
};

}  // namespace tb
