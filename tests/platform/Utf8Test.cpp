#include <string>

#include "platform/Utf8.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

const std::string kFFFD = "\xEF\xBF\xBD";

TEST(Utf8Test, WellFormedTextOfEveryLengthPassesAndIllFormedIsRefused) {
    for (const std::string& text : {
             std::string(),
             std::string("plain"),
             std::string("caf\xC3\xA9"),       // 2 bytes
             std::string("\xE2\x82\xAC 5"),    // 3 bytes
             std::string("\xF0\x9F\x8E\xB5"),  // 4 bytes
             std::string("\xED\x9F\xBF"),      // U+D7FF, just below the surrogates
             std::string("\xF4\x8F\xBF\xBF"),  // U+10FFFF, the last point
             std::string("nul\0inside", 10),
         }) {
        EXPECT_TRUE(isValidUtf8(text)) << text;
        EXPECT_EQ(repairedUtf8(text), text);
    }

    for (const std::string& text : {
             std::string("\xFF"),
             std::string("\x80"),              // a continuation with no lead
             std::string("\xC0\xAF"),          // overlong "/"
             std::string("\xE0\x80\xAF"),      // overlong "/" in three bytes
             std::string("\xED\xA0\x80"),      // a surrogate
             std::string("\xF4\x90\x80\x80"),  // beyond U+10FFFF
             std::string("\xF5\x80\x80\x80"),
             std::string("cut \xE2\x82"),  // cut at the end
             std::string("\xE2\x82 cut inside"),
         }) {
        EXPECT_FALSE(isValidUtf8(text)) << text;
    }
}

TEST(Utf8Test, RepairReplacesEachMaximalSubpartOnceAndKeepsWhatFollows) {
    EXPECT_EQ(repairedUtf8("bad \xFF\xFE byte"), "bad " + kFFFD + kFFFD + " byte");
    // A lead and its one fitting continuation are one broken character, and the ASCII after
    // them survives.
    EXPECT_EQ(repairedUtf8("\xE2\x82\"x\""), kFFFD + "\"x\"");
    // A lead whose next byte can't follow it is broken alone; the next byte starts afresh.
    EXPECT_EQ(repairedUtf8("\xE2\xC3\xA9"), kFFFD + "\xC3\xA9");
    // Overlong forms and surrogates break at their second byte: one replacement each byte.
    EXPECT_EQ(repairedUtf8("\xC0\xAF"), kFFFD + kFFFD);
    EXPECT_EQ(repairedUtf8("\xED\xA0\x80"), kFFFD + kFFFD + kFFFD);
    EXPECT_EQ(repairedUtf8("\xF0\x9F\x8E"), kFFFD);  // a four-byte character cut short
    EXPECT_EQ(repairedUtf8("\x80\x80"), kFFFD + kFFFD);

    for (const std::string& broken : {std::string("\xFF"), std::string("a\xF0\x9F"),
                                      std::string("\xED\xBF\xBF z"), std::string("\xC1\xBF")}) {
        EXPECT_TRUE(isValidUtf8(repairedUtf8(broken))) << broken;
    }
}

}  // namespace
}  // namespace tb
