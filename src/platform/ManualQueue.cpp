#include "platform/ManualQueue.h"

#include <cmath>

namespace tb {

namespace {

std::int64_t toNanos(double seconds) {
    return static_cast<std::int64_t>(std::llround(seconds * 1e9));
}

}  // namespace

ManualQueue::ManualQueue(double startWallTime) : clock_(startWallTime) {}

void ManualQueue::post(Task task) {
    postAfter(0.0, std::move(task));
}

void ManualQueue::postAfter(double delaySeconds, Task task) {
    std::lock_guard lock(mutex_);
    const std::int64_t delay = delaySeconds > 0.0 ? toNanos(delaySeconds) : 0;
    tasks_.push(Entry{nowNanos_ + delay, nextSequence_++, std::move(task)});
}

double ManualQueue::monotonicNow() const {
    std::lock_guard lock(mutex_);
    return static_cast<double>(nowNanos_) / 1e9;
}

bool ManualQueue::isCurrent() const {
    return true;
}

void ManualQueue::runUntilIdle() {
    while (runNextDueBy(nowNanos_)) {
    }
}

void ManualQueue::advanceBy(double seconds) {
    const std::int64_t target = nowNanos_ + (seconds > 0.0 ? toNanos(seconds) : 0);
    while (runNextDueBy(target)) {
    }
    std::int64_t rest = 0;
    {
        // Other threads read the time under the lock when they post.
        std::lock_guard lock(mutex_);
        rest = target - nowNanos_;
        nowNanos_ = target;
    }
    clock_.advance(static_cast<double>(rest) / 1e9);
}

std::size_t ManualQueue::pendingTaskCount() const {
    std::lock_guard lock(mutex_);
    return tasks_.size();
}

// Runs the earliest task due at or before `limitNanos`, moving virtual time to its moment.
bool ManualQueue::runNextDueBy(std::int64_t limitNanos) {
    Task task;
    {
        std::lock_guard lock(mutex_);
        if (tasks_.empty() || tasks_.top().dueNanos > limitNanos) {
            return false;
        }
        const std::int64_t due = tasks_.top().dueNanos;
        task = std::move(const_cast<Entry&>(tasks_.top()).task);
        tasks_.pop();
        if (due > nowNanos_) {
            clock_.advance(static_cast<double>(due - nowNanos_) / 1e9);
            nowNanos_ = due;
        }
    }
    task();
    return true;
}

}  // namespace tb
