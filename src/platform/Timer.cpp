#include "platform/Timer.h"

#include <cmath>

namespace tb {

struct Timer::State {
    MainQueue& queue;
    double interval;
    bool repeats;
    Action action;
    bool valid = true;
};

Timer::Timer(MainQueue& queue, double intervalSeconds, bool repeats, Action action)
    : state_(std::make_shared<State>(State{queue, intervalSeconds, repeats, std::move(action)})),
      interval_(intervalSeconds),
      repeats_(repeats) {}

std::unique_ptr<Timer> Timer::scheduled(MainQueue& queue,
                                        double intervalSeconds,
                                        bool repeats,
                                        Action action) {
    // A repeating timer with no interval would spin; the platform uses a tenth of a
    // millisecond as its floor, and so do we.
    const double interval = intervalSeconds > 0.0001 ? intervalSeconds : 0.0001;
    std::unique_ptr<Timer> timer(new Timer(queue, interval, repeats, std::move(action)));
    arm(timer->state_, queue.monotonicNow() + interval);
    return timer;
}

Timer::~Timer() {
    invalidate();
}

void Timer::invalidate() {
    state_->valid = false;
}

bool Timer::isValid() const {
    return state_->valid;
}

void Timer::arm(const std::shared_ptr<State>& state, double dueAt) {
    const double delay = dueAt - state->queue.monotonicNow();
    std::weak_ptr<State> weak = state;
    state->queue.postAfter(delay, [weak, dueAt] {
        const auto alive = weak.lock();
        if (!alive || !alive->valid) {
            return;
        }
        if (!alive->repeats) {
            alive->valid = false;
        } else {
            // Keep the phase: the next fire is the first multiple of the interval after now.
            const double now = alive->queue.monotonicNow();
            double next = dueAt + alive->interval;
            if (next <= now) {
                next += std::floor((now - next) / alive->interval + 1.0) * alive->interval;
            }
            arm(alive, next);
        }
        // The action may destroy the Timer; `alive` keeps the state until it returns.
        Action action = alive->action;
        action();
    });
}

}  // namespace tb
