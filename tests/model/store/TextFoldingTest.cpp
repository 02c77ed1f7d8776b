#include "model/store/TextFolding.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

constexpr unsigned kCase = TextFolding::kCaseInsensitive;
constexpr unsigned kMarks = TextFolding::kDiacriticInsensitive;

TEST(TextFoldingTest, CaseAndDiacriticsFoldLatinLettersToPlainLowerCase) {
    EXPECT_EQ(TextFolding::fold("Café DEL Mar", kCase | kMarks), "cafe del mar");
    EXPECT_EQ(TextFolding::fold("Ärzte Øresund Łódź Ñandú Ğ", kCase | kMarks),
              "arzte oresund lodz nandu g");
    EXPECT_EQ(TextFolding::fold("Ǿ ẞ ệ ƀ", kCase | kMarks), "o ss e b");
}

TEST(TextFoldingTest, SharpSAndLigaturesExpandSoThatPlainSpellingsMatch) {
    EXPECT_EQ(TextFolding::fold("Straße", kCase | kMarks), "strasse");
    EXPECT_EQ(TextFolding::fold("Æon Œuvre Þór", kCase | kMarks), "aeon oeuvre thor");
    EXPECT_EQ(TextFolding::fold("Æ", kMarks), "AE");
}

TEST(TextFoldingTest, EachOptionFoldsOnlyItsOwnDifference) {
    EXPECT_EQ(TextFolding::fold("ÉMILE Zoë", kMarks), "EMILE Zoe");
    EXPECT_EQ(TextFolding::fold("ÉMILE Zoë", kCase), "émile zoë");
    EXPECT_EQ(TextFolding::fold("ÉMILE Zoë", 0), "ÉMILE Zoë");
}

TEST(TextFoldingTest, DecomposedTextFoldsLikeComposedText) {
    EXPECT_EQ(TextFolding::fold("Cafe\xCC\x81", kCase | kMarks), "cafe");
    EXPECT_EQ(TextFolding::fold("Cafe\xCC\x81", kCase), "cafe\xCC\x81");
}

TEST(TextFoldingTest, GreekAndCyrillicFoldToo) {
    EXPECT_EQ(TextFolding::fold("ΆΛΦΑ", kCase | kMarks), "αλφα");
    EXPECT_EQ(TextFolding::fold("Ёлка Йод", kCase | kMarks), "елка иод");
}

TEST(TextFoldingTest, OtherScriptsEmojiAndBrokenBytesPassThrough) {
    EXPECT_EQ(TextFolding::fold("日本 🎵", kCase | kMarks), "日本 🎵");
    const std::string broken = "A\xff\xc3";  // a stray byte and a cut sequence
    EXPECT_EQ(TextFolding::fold(broken, kCase | kMarks), "a\xff\xc3");
    EXPECT_EQ(TextFolding::fold("", kCase | kMarks), "");
}

}  // namespace
}  // namespace tb
