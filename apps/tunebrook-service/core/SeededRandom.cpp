#include "tunebrook-service/core/SeededRandom.h"

namespace tb::service {

uint64_t SeededRandom::next() {
    state_ += 0x9e3779b97f4a7c15ULL;
    uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
}

uint64_t SeededRandom::below(uint64_t bound) {
    if (bound == 0) {
        return 0;
    }
    // Rejection keeps the draw unbiased.
    uint64_t limit = UINT64_MAX - UINT64_MAX % bound;
    uint64_t value = next();
    while (value >= limit) {
        value = next();
    }
    return value % bound;
}

int64_t SeededRandom::between(int64_t low, int64_t high) {
    if (high <= low) {
        return low;
    }
    return low + static_cast<int64_t>(below(static_cast<uint64_t>(high - low) + 1));
}

uint64_t SeededRandom::derive(uint64_t seed, const std::string& label) {
    // FNV-1a over the label, mixed with the seed through one round of the generator.
    uint64_t hash = 1469598103934665603ULL;
    for (unsigned char c : label) {
        hash = (hash ^ c) * 1099511628211ULL;
    }
    SeededRandom mixer(seed ^ hash);
    return mixer.next();
}

}  // namespace tb::service
