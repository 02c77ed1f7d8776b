#pragma once

#include <mutex>

namespace tb {

class RunLoop;

// A request to stop, from a signal, handed to the main queue once it exists: the queue
// quits from one of its own tasks, so a request made before the loop runs is not lost.
// Safe from any thread.
class StopRequest {
  public:
    void request();

    // From now on requests reach `loop`; one made earlier is handed over at once.
    void attach(RunLoop& loop);
    void detach();

    bool requested() const;

  private:
    void quitLocked();

    mutable std::mutex mutex_;
    RunLoop* loop_ = nullptr;
    bool requested_ = false;
};

}  // namespace tb
