#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "model/TBUtil.h"
#include "platform/JSON.h"
#include "support/Recorders.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(TBUtilTest, CleaningRemovesQuotesAndUnescapesSlashes) {
    EXPECT_EQ(TBUtil::cleanString(R"("https:\/\/a.test\/x.mp3")"), "https://a.test/x.mp3");
    EXPECT_EQ(TBUtil::cleanString(R"(a\b\\/c)"), R"(a\b\/c)");  // only "\/" pairs
    EXPECT_EQ(TBUtil::cleanString(R"(end\)"), R"(end\)");
    EXPECT_EQ(TBUtil::cleanString(R"("""")"), "");
}

TEST(TBUtilTest, IntegerFromTextAcceptsOnlyAWholeDecimalNumber) {
    EXPECT_EQ(TBUtil::integerFromText("42"), 42);
    EXPECT_EQ(TBUtil::integerFromText("-42"), -42);
    EXPECT_EQ(TBUtil::integerFromText("+42"), 42);
    EXPECT_EQ(TBUtil::integerFromText("007"), 7);
    EXPECT_EQ(TBUtil::integerFromText("9223372036854775807"),
              std::numeric_limits<std::int64_t>::max());
    for (const char* text :
         {"", "-", "+", "+-1", " 1", "1 ", "1.0", "1e3", "0x10", "12abc", "9223372036854775808"}) {
        EXPECT_EQ(TBUtil::integerFromText(text), std::nullopt) << text;
    }
}

TEST(TBUtilTest, TimeStringShowsMinutesAndPaddedSeconds) {
    EXPECT_EQ(TBUtil::timeStringFromSeconds(-1), "-:--");
    EXPECT_EQ(TBUtil::timeStringFromSeconds(-0.5), "-:--");
    EXPECT_EQ(TBUtil::timeStringFromSeconds(std::nan("")), "-:--");
    EXPECT_EQ(TBUtil::timeStringFromSeconds(0), "0:00");
    EXPECT_EQ(TBUtil::timeStringFromSeconds(9.9), "0:09");
    EXPECT_EQ(TBUtil::timeStringFromSeconds(60), "1:00");
    EXPECT_EQ(TBUtil::timeStringFromSeconds(599), "9:59");
    EXPECT_EQ(TBUtil::timeStringFromSeconds(3661), "61:01");  // never split into hours
    EXPECT_FALSE(TBUtil::timeStringFromSeconds(1e300).empty());
}

// Divided in single precision, and cut.
TEST(TBUtilTest, ShortStatNumbersAreCutNeverRoundedUp) {
    const std::vector<std::pair<std::int64_t, std::string>> cases = {
        {0, "0"},
        {7, "7"},
        {999, "999"},
        {-5000, "-5000"},
        {1000, "1.00K"},
        {1234, "1.23K"},
        {1239, "1.23K"},
        {1170, "1.16K"},  // the float of 1.17 is 1.1699999..., and it is cut
        {1250, "1.25K"},  // 1.25 is exact in binary: nothing to lose
        {2300, "2.29K"},
        {9999, "9.99K"},
        {10000, "10.0K"},
        {99999, "99.9K"},
        {100000, "100K"},
        {999999, "999K"},
        {1000000, "1.00M"},
        {1999999, "1.99M"},
        {4100000, "4.09M"},
        {12345678, "12.3M"},
        {16777217, "16.7M"},  // no float of its own: read as 16777216
        {16999999, "17.0M"},  // the float is 17000000
        {123456789, "123M"},
        {1000000000, "1.00B"},
        {98765432100, "98.7B"},
        {123456789012, "123B"},
    };
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(TBUtil::formatShortStatNumber(value), text) << value;
    }
    EXPECT_FALSE(TBUtil::formatShortStatNumber(std::numeric_limits<std::int64_t>::max()).empty());
}

TEST(TBUtilTest, FullStatNumbersAreGroupedByThree) {
    EXPECT_EQ(TBUtil::formatFullStatNumber(0), "0");
    EXPECT_EQ(TBUtil::formatFullStatNumber(999), "999");
    EXPECT_EQ(TBUtil::formatFullStatNumber(1000), "1,000");
    EXPECT_EQ(TBUtil::formatFullStatNumber(1234567), "1,234,567");
    EXPECT_EQ(TBUtil::formatFullStatNumber(-1234), "-1,234");
    EXPECT_EQ(TBUtil::formatFullStatNumber(std::numeric_limits<std::int64_t>::min()),
              "-9,223,372,036,854,775,808");
}

TEST(TBUtilTest, ArtworkFileNameDropsUnsafeCharactersAndMakesTheFolder) {
    test::TempDir documents;
    const std::string folder = documents.path() + "/artworks";
    ASSERT_FALSE(std::filesystem::exists(folder));

    const std::string path = TBUtil::remoteUrlToArtworkFile(
        "https://img.test/a/b%20c.jpg?w=1|x*y\"<z>\\q", documents.path());
    EXPECT_EQ(path, folder + "/httpsimg.testab20c.jpgw=1xyzq");
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    // Made on every call: a folder removed in between comes back.
    std::filesystem::remove_all(folder);
    TBUtil::remoteUrlToArtworkFile("https://img.test/x.jpg", documents.path());
    EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST(TBUtilTest, ArtworkFileNameKeepsTheLast255Bytes) {
    test::TempDir documents;
    const std::string name = [&] {
        const std::string path = TBUtil::remoteUrlToArtworkFile(
            "https://img.test/" + std::string(300, 'a') + "-end.jpg", documents.path());
        return path.substr(path.rfind('/') + 1);
    }();
    EXPECT_EQ(name.size(), 255u);
    EXPECT_EQ(name.substr(name.size() - 8), "-end.jpg");

    const std::string exact = std::string(255, 'b');
    const std::string kept = TBUtil::remoteUrlToArtworkFile(exact, documents.path());
    EXPECT_EQ(kept.substr(kept.rfind('/') + 1), exact);

    // A cut never starts inside a multi-byte character.
    std::string accented;
    for (int i = 0; i < 200; ++i) {
        accented += "\xc3\xa9";  // é
    }
    const std::string path = TBUtil::remoteUrlToArtworkFile(accented, documents.path());
    const std::string cut = path.substr(path.rfind('/') + 1);
    EXPECT_EQ(cut.size(), 254u);
    EXPECT_EQ(static_cast<unsigned char>(cut.front()), 0xC3);
}

TEST(TBUtilTest, ArtworkFileNeverLeavesItsFolder) {
    test::TempDir documents;
    const std::string folder = documents.path() + "/artworks/";
    for (const char* url : {"", "..", ".", "/../", "..:/"}) {
        const std::string path = TBUtil::remoteUrlToArtworkFile(url, documents.path());
        const std::string name = path.substr(folder.size());
        EXPECT_EQ(path.substr(0, folder.size()), folder) << url;
        EXPECT_FALSE(name.empty() || name == "." || name == "..") << url;
        EXPECT_EQ(name.find('/'), std::string::npos) << url;
    }
    const std::string withZero =
        TBUtil::remoteUrlToArtworkFile(std::string("a\0b", 3), documents.path());
    EXPECT_EQ(withZero, folder + "ab");
}

TEST(TBUtilTest, FeaturedArtistsSplitOnCommasAndAnd) {
    EXPECT_EQ(TBUtil::getFeatArtistsFrom(std::string("Ama K, Tobi and Dayo")),
              (std::vector<std::string>{"Ama K", "Tobi", "Dayo"}));
    EXPECT_EQ(TBUtil::getFeatArtistsFrom(std::string(" Solo ")),
              (std::vector<std::string>{"Solo"}));
    // "and" inside a name is no separator; only " and " is.
    EXPECT_EQ(TBUtil::getFeatArtistsFrom(std::string("Sandy,Andre and  Anders")),
              (std::vector<std::string>{"Sandy", "Andre", "Anders"}));
    // Blank parts are split and trimmed like the others, and stay.
    EXPECT_EQ(TBUtil::getFeatArtistsFrom(std::string("A, , B")),
              (std::vector<std::string>{"A", "", "B"}));
    EXPECT_EQ(TBUtil::getFeatArtistsFrom(std::string(", ,")),
              (std::vector<std::string>{"", "", ""}));
    EXPECT_EQ(TBUtil::getFeatArtistsFrom(std::string("")), (std::vector<std::string>{""}));
    EXPECT_TRUE(TBUtil::getFeatArtistsFrom(std::nullopt).empty());
}

TEST(TBUtilTest, WaveformIsResampledLinearlyToTheTicks) {
    EXPECT_EQ(TBUtil::interpolatedData({0, 10}, 3), (std::vector<double>{0, 5, 10}));
    EXPECT_EQ(TBUtil::interpolatedData({0, 10, 20, 30, 40}, 3), (std::vector<double>{0, 20, 40}));
    EXPECT_EQ(TBUtil::interpolatedData({4, 8}, 5), (std::vector<double>{4, 5, 6, 7, 8}));
    EXPECT_EQ(TBUtil::interpolatedData({7}, 3), (std::vector<double>{7, 7, 7}));
    EXPECT_EQ(TBUtil::interpolatedData({3, 9}, 1), (std::vector<double>{3}));
    EXPECT_TRUE(TBUtil::interpolatedData({}, 10).empty());
    EXPECT_TRUE(TBUtil::interpolatedData({1, 2}, 0).empty());
    EXPECT_TRUE(TBUtil::interpolatedData({1, 2}, -4).empty());

    const auto many = TBUtil::interpolatedData({0, 100, 0}, 1000);
    ASSERT_EQ(many.size(), 1000u);
    EXPECT_EQ(many.front(), 0);
    EXPECT_EQ(many.back(), 0);
    for (const double point : many) {
        EXPECT_GE(point, 0);
        EXPECT_LE(point, 100);
    }
    EXPECT_DOUBLE_EQ(TBUtil::linearInterpolatedPoint(10, 20, 0.25), 12.5);
}

TEST(TBUtilTest, ShuffleIsAForwardFisherYatesPass) {
    test::ScriptedRandomSource random;
    random.script = {2, 0, 1, 0};
    const auto shuffled = TBUtil::shuffle(std::vector<std::string>{"a", "b", "c", "d"}, random);
    // i=0 swaps with 0+2, i=1 stays, i=2 swaps with 2+1, i=3 stays.
    EXPECT_EQ(shuffled, (std::vector<std::string>{"c", "b", "d", "a"}));
    EXPECT_EQ(random.upperBoundsAsked, (std::vector<std::uint64_t>{4, 3, 2, 1}));
    EXPECT_TRUE(TBUtil::shuffle(std::vector<int>{}, random).empty());
}

TEST(TBUtilTest, GuardsAreNilSafe) {
    const JSON json = JSON::parse(R"({"s": "v", "n": 1, "a": [1, 2]})");
    EXPECT_EQ(TBUtil::yesNo(true), "yes");
    EXPECT_EQ(TBUtil::yesNo(false), "no");
    EXPECT_EQ(TBUtil::stringOrNil(json["s"]), "v");
    EXPECT_EQ(TBUtil::stringOrNil(json["n"]), std::nullopt);
    EXPECT_EQ(TBUtil::stringFrom(json, "missing"), std::nullopt);
    EXPECT_EQ(TBUtil::arrayFrom(json, "a").size(), 2u);
    EXPECT_TRUE(TBUtil::arrayFrom(json, "s").empty());
    EXPECT_TRUE(TBUtil::areEqualString(std::nullopt, std::nullopt));
    EXPECT_FALSE(TBUtil::areEqualString(std::string("a"), std::nullopt));
    EXPECT_TRUE(TBUtil::areEqualString(std::string("a"), std::string("a")));
}

TEST(TBUtilTest, BuildTypeAndReleaseStage) {
#if defined(TB_BUILD_TYPE)
    EXPECT_EQ(TBUtil::buildType(), TB_BUILD_TYPE);
#elif defined(NDEBUG)
    EXPECT_EQ(TBUtil::buildType(), TBBuildTypeProduction);
#else
    EXPECT_EQ(TBUtil::buildType(), TBBuildTypeDebug);
#endif
    EXPECT_EQ(TBUtil::releaseStage(0), "Debug");
    EXPECT_EQ(TBUtil::releaseStage(1), "AdHoc");
    EXPECT_EQ(TBUtil::releaseStage(2), "TestFlight");
    EXPECT_EQ(TBUtil::releaseStage(3), "Production");
    EXPECT_EQ(TBUtil::releaseStage(4), std::nullopt);
    EXPECT_EQ(TBUtil::releaseStage(-1), std::nullopt);
}

}  // namespace
}  // namespace tb
