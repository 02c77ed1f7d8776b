#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <httplib.h>

namespace tb::service {

// The server's task queue: one thread per open connection, started when every thread is
// busy, up to `maxThreads`. The HTTP library hands a whole connection to one task, which
// holds its thread until the connection closes, so a fixed pool of N threads is starved
// by N idle or slow peers; here a slow peer only costs its own thread, and the time limits
// of ConnectionServer bound how long it keeps it. Threads stay for later connections and
// are joined at shutdown.
class ConnectionThreads : public httplib::TaskQueue {
  public:
    explicit ConnectionThreads(size_t maxThreads);
    ~ConnectionThreads() override;

    void enqueue(std::function<void()> task) override;
    // Runs what is queued, then joins every thread.
    void shutdown() override;

  private:
    void work();

    const size_t maxThreads_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> tasks_;
    std::vector<std::thread> threads_;
    size_t idle_ = 0;
    bool stopping_ = false;
};

}  // namespace tb::service
