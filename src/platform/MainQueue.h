#pragma once

#include <functional>

namespace tb {

// The one queue that runs all application logic. Other threads exist only inside the
// platform layer and hand their results back with post().
//
// Two implementations: RunLoop (the real loop of the process) and ManualQueue (virtual
// time, for tests).
class MainQueue {
  public:
    using Task = std::function<void()>;

    virtual ~MainQueue() = default;

    // Runs `task` on the main queue after the tasks already due. Safe from any thread.
    virtual void post(Task task) = 0;

    // Runs `task` once `delaySeconds` have passed on this queue's clock. A delay of zero or
    // less behaves like post(). Safe from any thread.
    virtual void postAfter(double delaySeconds, Task task) = 0;

    // Seconds on this queue's monotonic clock: real for RunLoop, virtual for ManualQueue.
    virtual double monotonicNow() const = 0;

    // True when called on the thread that runs this queue's tasks.
    virtual bool isCurrent() const = 0;
};

}  // namespace tb
