#pragma once

#include <functional>

namespace tb {

// Whether the service's host can be reached, and by which kind of link.
class Reachability {
  public:
    virtual ~Reachability() = default;

    virtual bool isReachable() const = 0;
    virtual bool isReachableViaWiFi() const = 0;

    // Starts watching; the callbacks run on the main queue at each change, and once with
    // the first reading.
    virtual void startNotifier(std::function<void()> becameReachable,
                               std::function<void()> becameUnreachable) = 0;
};

}  // namespace tb
