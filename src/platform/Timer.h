#pragma once

#include <functional>
#include <memory>

#include "platform/MainQueue.h"

namespace tb {

// A one-shot or repeating timer on a main queue. It stops for good when invalidated or
// destroyed, also from inside its own action. A repeating timer keeps its phase: it fires at
// start + k * interval, and fires it could not make in time are skipped, not bunched up.
class Timer {
  public:
    using Action = std::function<void()>;

    static std::unique_ptr<Timer> scheduled(MainQueue& queue,
                                            double intervalSeconds,
                                            bool repeats,
                                            Action action);

    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void invalidate();
    bool isValid() const;
    double interval() const { return interval_; }
    bool repeats() const { return repeats_; }

  private:
    struct State;
    Timer(MainQueue& queue, double intervalSeconds, bool repeats, Action action);
    static void arm(const std::shared_ptr<State>& state, double dueAt);

    std::shared_ptr<State> state_;
    double interval_;
    bool repeats_;
};

}  // namespace tb
