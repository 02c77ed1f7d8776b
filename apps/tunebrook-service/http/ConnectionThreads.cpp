#include "tunebrook-service/http/ConnectionThreads.h"

namespace tb::service {

ConnectionThreads::ConnectionThreads(size_t maxThreads) : maxThreads_(maxThreads) {}

ConnectionThreads::~ConnectionThreads() {
    shutdown();
}

void ConnectionThreads::enqueue(std::function<void()> task) {
    {
        std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
        // Every queued task that no idle thread will take gets a thread of its own.
        if (tasks_.size() > idle_ && threads_.size() < maxThreads_) {
            threads_.emplace_back([this] { work(); });
        }
    }
    wake_.notify_one();
}

void ConnectionThreads::shutdown() {
    std::vector<std::thread> threads;
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
        threads.swap(threads_);
    }
    wake_.notify_all();
    for (auto& thread : threads) {
        thread.join();
    }
}

void ConnectionThreads::work() {
    for (;;) {
        std::function<void()> task;
        {
            std::unique_lock lock(mutex_);
            ++idle_;
            wake_.wait(lock, [this] { return !tasks_.empty() || stopping_; });
            --idle_;
            if (tasks_.empty()) {
                return;
            }
            task = std::move(tasks_.front());
            tasks_.pop_front();
        }
        task();
    }
}

}  // namespace tb::service
