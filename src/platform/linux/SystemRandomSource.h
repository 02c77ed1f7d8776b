#pragma once

#include <cstdint>

#include "platform/RandomSource.h"

namespace tb {

// The system's generators: the kernel's secure source (getrandom).
class SystemRandomSource final : public RandomSource {
  public:
    std::uint32_t uniform(std::uint32_t upperBound) override;
    std::uint64_t secureUniform(std::uint64_t upperBound) override;
};

}  // namespace tb
