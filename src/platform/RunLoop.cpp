#include "platform/RunLoop.h"

#include <chrono>

namespace tb {

namespace {

double steadySeconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

RunLoop::RunLoop() : mainThread_(std::this_thread::get_id()) {}

RunLoop::~RunLoop() = default;

void RunLoop::post(Task task) {
    postAfter(0.0, std::move(task));
}

void RunLoop::postAfter(double delaySeconds, Task task) {
    const double due = steadySeconds() + (delaySeconds > 0.0 ? delaySeconds : 0.0);
    {
        std::lock_guard lock(mutex_);
        tasks_.push(Entry{due, nextSequence_++, std::move(task)});
    }
    wake_.notify_one();
}

double RunLoop::monotonicNow() const {
    return steadySeconds();
}

bool RunLoop::isCurrent() const {
    return std::this_thread::get_id() == mainThread_;
}

// A quit() asked for before run() or runUntil() is kept and ends them at once; runOne()
// clears it when it acts on it.
void RunLoop::run() {
    while (runOne(-1.0)) {
    }
}

bool RunLoop::runUntil(const std::function<bool()>& done, double timeoutSeconds) {
    const double deadline = steadySeconds() + timeoutSeconds;
    while (!done()) {
        if (steadySeconds() >= deadline || !runOne(deadline)) {
            break;
        }
    }
    return done();
}

void RunLoop::quit() {
    {
        std::lock_guard lock(mutex_);
        quitRequested_ = true;
    }
    wake_.notify_one();
}

// Waits for the next due task and runs it. Returns false when quit was asked for; a wait
// that reaches `deadline` (when it is positive) returns true without running anything.
bool RunLoop::runOne(double deadline) {
    Task task;
    {
        std::unique_lock lock(mutex_);
        for (;;) {
            if (quitRequested_) {
                quitRequested_ = false;
                return false;
            }
            const double now = steadySeconds();
            if (!tasks_.empty() && tasks_.top().due <= now) {
                // priority_queue::top() is const; the entry is popped right after the move.
                task = std::move(const_cast<Entry&>(tasks_.top()).task);
                tasks_.pop();
                break;
            }
            if (deadline > 0.0 && now >= deadline) {
                return true;
            }
            double wakeAt = tasks_.empty() ? now + 3600.0 : tasks_.top().due;
            if (deadline > 0.0 && deadline < wakeAt) {
                wakeAt = deadline;
            }
            wake_.wait_for(lock, std::chrono::duration<double>(wakeAt - now));
        }
    }
    task();
    return true;
}

}  // namespace tb
