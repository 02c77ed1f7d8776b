#pragma once

namespace tb {

// Time as the app reads it. Both readings are injectable so that the 30-day, 7-day and
// 120-hour rules and every stored date can be tested.
class Clock {
  public:
    virtual ~Clock() = default;

    // Wall time: seconds since 1970, with fractions.
    virtual double now() const = 0;

    // Monotonic seconds from an arbitrary origin; never goes back.
    virtual double monotonic() const = 0;
};

// The system's clocks.
class SystemClock final : public Clock {
  public:
    double now() const override;
    double monotonic() const override;
};

// A clock that moves only when told. ManualQueue owns one and advances it with virtual time.
class ManualClock final : public Clock {
  public:
    explicit ManualClock(double startWallTime = 1'700'000'000.0) : wall_(startWallTime) {}

    double now() const override { return wall_; }
    double monotonic() const override { return monotonic_; }

    // Moves both readings forward.
    void advance(double seconds) {
        wall_ += seconds;
        monotonic_ += seconds;
    }

    // Sets the wall time alone, as a user changing the device clock would.
    void setNow(double wallTime) { wall_ = wallTime; }

  private:
    double wall_;
    double monotonic_ = 0.0;
};

}  // namespace tb
