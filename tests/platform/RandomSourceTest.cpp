#include <array>
#include <cstdint>

#include "platform/linux/SystemRandomSource.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(SystemRandomSourceTest, TinyBoundsGiveZero) {
    SystemRandomSource random;
    EXPECT_EQ(random.uniform(0), 0u);
    EXPECT_EQ(random.uniform(1), 0u);
    EXPECT_EQ(random.secureUniform(0), 0u);
    EXPECT_EQ(random.secureUniform(1), 0u);
}

TEST(SystemRandomSourceTest, HundredBucketsAreAllHitAndEvenlyFilled) {
    SystemRandomSource random;
    constexpr int kDraws = 200'000;
    std::array<int, 100> counts{};
    for (int i = 0; i < kDraws; ++i) {
        const auto r = random.uniform(100);
        ASSERT_LT(r, 100u);
        ++counts[r];
    }
    // Chi-square with 99 degrees of freedom; 200 lies far beyond any honest draw
    // (p < 1e-8) and well below what a stuck or skewed generator gives.
    double chiSquare = 0.0;
    const double expected = kDraws / 100.0;
    for (int count : counts) {
        chiSquare += (count - expected) * (count - expected) / expected;
    }
    EXPECT_LT(chiSquare, 200.0);
}

// With a bound of three quarters of the word range, a plain modulo maps half of all
// draws below a third of the bound: the rejection step must bring that back to a third.
TEST(SystemRandomSourceTest, LargeBoundsHaveNoModuloBias) {
    SystemRandomSource random;
    constexpr int kDraws = 30'000;
    const std::uint32_t bound32 = 3u << 30;
    const std::uint64_t bound64 = 3ull << 62;
    int low32 = 0;
    int low64 = 0;
    for (int i = 0; i < kDraws; ++i) {
        const auto r32 = random.uniform(bound32);
        const auto r64 = random.secureUniform(bound64);
        ASSERT_LT(r32, bound32);
        ASSERT_LT(r64, bound64);
        low32 += r32 < (1u << 30) ? 1 : 0;
        low64 += r64 < (1ull << 62) ? 1 : 0;
    }
    EXPECT_NEAR(low32 / double(kDraws), 1.0 / 3.0, 0.03);
    EXPECT_NEAR(low64 / double(kDraws), 1.0 / 3.0, 0.03);
}

}  // namespace
}  // namespace tb
