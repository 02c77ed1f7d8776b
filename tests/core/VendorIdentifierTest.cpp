#include <regex>

#include "core/VendorIdentifier.h"
#include "platform/MemoryUserDefaults.h"
#include "support/Recorders.h"

#include <gtest/gtest.h>

namespace tb::test {
namespace {

TEST(VendorIdentifierTest, IsAVersion4UUIDMadeOnceAndKeptUntilTheDefaultsAreGone) {
    MemoryUserDefaults defaults;
    ScriptedRandomSource random;
    random.script = {0xFF, 0x00, 0xAB};
    random.fallback = 0xFF;

    const std::string first = vendorIdentifier(defaults, random);
    EXPECT_TRUE(std::regex_match(
        first, std::regex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
        << first;
    EXPECT_EQ(first.substr(0, 6), "FF00AB");
    for (auto& bound : random.upperBoundsAsked) {
        EXPECT_EQ(bound, 256u) << "every byte comes from the secure source";
    }

    random.fallback = 0x11;
    EXPECT_EQ(vendorIdentifier(defaults, random), first);

    MemoryUserDefaults reinstalled;
    EXPECT_NE(vendorIdentifier(reinstalled, random), first);
}

}  // namespace
}  // namespace tb::test
