#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "tunebrook-service/http/FaultRule.h"

namespace tb::service {

// The rules of injected faults, set from the command line or the admin endpoint, and the
// waits they cause, which end early when the server stops.
class FaultInjector {
  public:
    int add(FaultRule rule);
    bool remove(int id);
    void clear();
    nlohmann::json list() const;

    // The first rule that matches, counted as used once; admin paths never match.
    std::optional<FaultRule> take(const std::string& method, const std::string& path);

    // Waits; false when the wait was cut short by `stop`.
    bool sleepFor(std::chrono::milliseconds duration);
    void stop();
    bool stopping() const { return stopping_; }

    // "*" matches within one path segment, "**" across segments.
    static bool globMatch(std::string_view pattern, std::string_view path);
    // Patterns without a leading "/" are relative to the API base.
    static std::string absolutePattern(const std::string& pattern);

  private:
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<FaultRule> rules_;
    int nextId_ = 1;
    std::atomic<bool> stopping_{false};
};

}  // namespace tb::service
