#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <queue>
#include <thread>
#include <vector>

#include "platform/MainQueue.h"

namespace tb {

// The real main queue: the thread that constructs it is the main thread, and run() executes
// posted tasks in order of their due time (posting order among equal times) until quit().
class RunLoop final : public MainQueue {
  public:
    RunLoop();
    ~RunLoop() override;

    void post(Task task) override;
    void postAfter(double delaySeconds, Task task) override;
    double monotonicNow() const override;
    bool isCurrent() const override;

    // Runs tasks until quit() is called. Main thread only.
    void run();

    // Runs tasks until `done()` is true (checked after each task) or `timeoutSeconds` have
    // passed. Returns done(). Main thread only. Used by the command line and integration tests.
    bool runUntil(const std::function<bool()>& done, double timeoutSeconds);

    // Makes run() return after the task under way. Safe from any thread.
    void quit();

  private:
    struct Entry {
        double due;
        std::uint64_t sequence;
        Task task;
    };
    struct Later {
        bool operator()(const Entry& a, const Entry& b) const {
            return a.due != b.due ? a.due > b.due : a.sequence > b.sequence;
        }
    };

    bool runOne(double deadline);

    std::thread::id mainThread_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::priority_queue<Entry, std::vector<Entry>, Later> tasks_;
    std::uint64_t nextSequence_ = 0;
    bool quitRequested_ = false;
};

}  // namespace tb
