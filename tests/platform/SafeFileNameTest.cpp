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

const std::vector<NameCase> kNames = {
    // Plain ids keep their names, so files stored under them stay where they are.
    {"4815162", "4815162"},
    {"song-1_v2.final", "song-1_v2.final"},
    {"a..", "a.."},
    {std::string(160, 'x'), std::string(160, 'x')},
    // Anything that could leave the folder, hide, or clash is encoded.
    {"", "%"},
    {".", "%2E"},
    {"..", "%2E."},
    {".hidden", "%2Ehidden"},
    {"../../etc/passwd", "%2E.%2F..%2Fetc%2Fpasswd"},
    {"a/b", "a%2Fb"},
    {"\\", "%5C"},
    {std::string("a\0b", 3), "a%00b"},
    {"a b%", "a%20b%25"},
    {"caf\xc3\xa9", "caf%C3%A9"},
    {"standard", "%73tandard"},
    {std::string(161, 'x'),
     "%sha256-FDB7F3C40645E79CA4C5D1638753243CCB283F5DD126CEB21DE5FA7D40953C65"}};

class SafeFileNameCaseTest : public testing::TestWithParam<NameCase> {};

TEST_P(SafeFileNameCaseTest, MapsTheName) {
    EXPECT_EQ(safeFileName(GetParam().name, {"standard"}), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Names, SafeFileNameCaseTest, testing::ValuesIn(kNames));

// Every name above and every file name it became, taken as names, map to different files.
TEST(SafeFileNameTest, DifferentNamesNeverShareAFileName) {
    std::set<std::string> names = {"a_b",
                                   "a+b",
                                   "A",
                                   "a",
                                   ".a",
                                   "s",
                                   "sha256-0",
                                   std::string(161, 'y'),
                                   std::string(300, '/'),
                                   std::string(300, '.')};
    for (const auto& c : kNames) {
        names.insert({c.name, c.expected});
    }
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
