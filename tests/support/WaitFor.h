#pragma once

#include <chrono>
#include <thread>

namespace tb::test {

// Polls `condition` until it holds or `limit` has passed; true when it held.
template <typename Condition>
bool waitFor(Condition condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

}  // namespace tb::test
