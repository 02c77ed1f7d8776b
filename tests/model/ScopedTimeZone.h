#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace tb::test {

// The device's time zone for one test: TZ is set (a POSIX rule such as "PST8PDT,M3.2.0,M11.1.0"
// needs no zone files) and put back as it was when the scope ends.
class ScopedTimeZone {
  public:
    explicit ScopedTimeZone(const char* zone) {
        if (const char* previous = std::getenv("TZ")) {
            previous_ = previous;
        }
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~ScopedTimeZone() {
        if (previous_) {
            ::setenv("TZ", previous_->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }
    ScopedTimeZone(const ScopedTimeZone&) = delete;
    ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

  private:
    std::optional<std::string> previous_;
};

}  // namespace tb::test
