#include <set>
#include <string>
#include <vector>

#include "platform/SafeFileName.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

struct NameCase {
    std::string name;
    std::string expected;
};

class SafeFileNameCaseTest : public testing::TestWithParam<NameCase> {};

TEST_P(SafeFileNameCaseTest, MapsTheName) {
    EXPECT_EQ(safeFileName(GetParam().name, {"standard"}), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Names,
    SafeFileNameCaseTest,
    testing::Values(
        // Plain ids keep their names, so files stored under them stay where they are.
        NameCase{"4815162", "4815162"},
        NameCase{"song-1_v2.final", "song-1_v2.final"},
        NameCase{"a..", "a.."},
        NameCase{std::string(160, 'x'), std::string(160, 'x')},
        // Anything that could leave the folder, hide, or clash is encoded.
        NameCase{"", "%"},
        NameCase{".", "%2E"},
        NameCase{"..", "%2E."},
        NameCase{".hidden", "%2Ehidden"},
        NameCase{"../../etc/passwd", "%2E.%2F..%2Fetc%2Fpasswd"},
        NameCase{"a/b", "a%2Fb"},
        NameCase{"\\", "%5C"},
        NameCase{std::string("a\0b", 3), "a%00b"},
        NameCase{"a b%", "a%20b%25"},
        NameCase{"caf\xc3\xa9", "caf%C3%A9"},
        NameCase{"standard", "%73tandard"},
        NameCase{std::string(161, 'x'),
                 "%sha256-FDB7F3C40645E79CA4C5D1638753243CCB283F5DD126CEB21DE5FA7D40953C65"}));

TEST(SafeFileNameTest, DifferentNamesNeverShareAFileName) {
    const std::vector<std::string> names = {"a/b",
                                            "a%2Fb",
                                            "a_b",
                                            ".a",
                                            "%2Ea",
                                            "a b",
                                            "a+b",
                                            "A",
                                            "a",
                                            "",
                                            "%",
                                            "standard",
                                            "%73tandard",
                                            "s",
                                            "sha256-0",
                                            std::string(161, 'x'),
                                            std::string(161, 'y'),
                                            std::string(300, '/'),
                                            std::string(300, '.')};
    std::set<std::string> fileNames;
    for (const auto& name : names) {
        const std::string fileName = safeFileName(name, {"standard"});
        EXPECT_EQ(fileName.find('/'), std::string::npos) << name;
        EXPECT_LE(fileName.size(), 160u) << name;
        EXPECT_NE(fileName.front(), '.') << name;
        fileNames.insert(fileName);
    }
    EXPECT_EQ(fileNames.size(), names.size());
}

}  // namespace
}  // namespace tb
