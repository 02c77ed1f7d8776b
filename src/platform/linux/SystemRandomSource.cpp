#include "platform/linux/SystemRandomSource.h"

#include <cerrno>
#include <cstddef>

#include <sys/random.h>

#include "platform/Fatal.h"

namespace tb {

namespace {

// Fills `size` bytes from the kernel's secure source. getrandom() may return fewer bytes
// than asked or be interrupted by a signal; both are retried. Other failures mean the
// kernel has no source at all, which the app can't do without.
void fillRandom(void* buffer, std::size_t size) {
    auto* bytes = static_cast<unsigned char*>(buffer);
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t got = getrandom(bytes + filled, size - filled, 0);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            TB_FATAL("getrandom failed");
        }
        filled += static_cast<std::size_t>(got);
    }
}

// Uniform in [0, upperBound) without modulo bias: draws below 2^N mod upperBound are
// thrown away, so the values left cover every residue equally often.
template <typename Word>
Word uniformBelow(Word upperBound) {
    if (upperBound < 2) {
        return 0;
    }
    const Word threshold = static_cast<Word>(-upperBound) % upperBound;
    for (;;) {
        Word draw = 0;
        fillRandom(&draw, sizeof draw);
        if (draw >= threshold) {
            return draw % upperBound;
        }
    }
}

}  // namespace

std::uint32_t SystemRandomSource::uniform(std::uint32_t upperBound) {
    return uniformBelow<std::uint32_t>(upperBound);
}

std::uint64_t SystemRandomSource::secureUniform(std::uint64_t upperBound) {
    return uniformBelow<std::uint64_t>(upperBound);
}

}  // namespace tb
