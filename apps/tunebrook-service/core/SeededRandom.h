#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tb::service {

// A small generator whose sequence is fixed by its seed on every platform (splitmix64), with
// its own range helpers: the standard distributions may differ between library versions,
// and the demo catalogue must not.
class SeededRandom {
  public:
    explicit SeededRandom(uint64_t seed) : state_(seed) {}

    uint64_t next();
    // Uniform in [0, bound); bound 0 gives 0.
    uint64_t below(uint64_t bound);
    // Uniform in [low, high].
    int64_t between(int64_t low, int64_t high);
    // True with the given chance in percent.
    bool percent(unsigned chance) { return below(100) < chance; }
    template <typename T>
    const T& pick(const std::vector<T>& values) {
        return values[static_cast<size_t>(below(values.size()))];
    }

    // A seed for a separate stream derived from this seed and a label, so that adding a draw
    // in one part of the catalogue doesn't shift every other part.
    static uint64_t derive(uint64_t seed, const std::string& label);

  private:
    uint64_t state_;
};

}  // namespace tb::service
