#pragma once

#include <csignal>
#include <functional>
#include <thread>

namespace tb {

// Turns SIGINT and SIGTERM into a call on a thread of its own, so that the main queue can be
// asked to stop cleanly instead of the process dying in the middle of a write.
//
// Construct it first thing in main, before any other thread exists: it blocks the signals
// for the whole process (threads inherit the mask) and waits for them with sigwait.
class SignalWatcher {
  public:
    // `onSignal` runs on the watcher's thread with the signal's number, at most once; a second
    // SIGINT or SIGTERM ends the process at once with 128 + the signal's number.
    explicit SignalWatcher(std::function<void(int signal)> onSignal);
    ~SignalWatcher();
    SignalWatcher(const SignalWatcher&) = delete;
    SignalWatcher& operator=(const SignalWatcher&) = delete;

  private:
    void watch();

    std::function<void(int)> onSignal_;
    sigset_t signals_{};
    std::thread thread_;
};

}  // namespace tb
