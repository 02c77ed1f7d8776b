#pragma once

#include <cstdint>

namespace tb {

// Random numbers the app draws (the crash reporter pick, nonces, the featured spot, shuffle).
// Injectable so that tests pin them.
class RandomSource {
  public:
    virtual ~RandomSource() = default;

    // Uniform in [0, upperBound), as arc4random_uniform; 0 when upperBound < 2.
    virtual std::uint32_t uniform(std::uint32_t upperBound) = 0;

    // Uniform in [0, upperBound) from the system's secure source, with rejection.
    virtual std::uint64_t secureUniform(std::uint64_t upperBound) = 0;
};

}  // namespace tb
