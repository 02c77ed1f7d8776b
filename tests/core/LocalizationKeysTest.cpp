#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "core/TBLocalization.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

// Every key the sources look up by literal has an English text: a missing one would show
// the listener the bare key.
TEST(LocalizationKeysTest, EveryKeyTheSourcesUseHasAText) {
    const std::regex lookup(R"re(localized(String|Format)\s*\(\s*"([^"\\]+)")re");
    int keysSeen = 0;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(std::string(TB_SOURCE_DIR) + "/src")) {
        const auto extension = entry.path().extension();
        if (!entry.is_regular_file() || (extension != ".cpp" && extension != ".h")) {
            continue;
        }
        std::ifstream file(entry.path());
        std::stringstream text;
        text << file.rdbuf();
        const std::string source = text.str();
        for (std::sregex_iterator it(source.begin(), source.end(), lookup), end; it != end; ++it) {
            const std::string key = (*it)[2];
            ++keysSeen;
            EXPECT_TRUE(TBLocalization::hasText(key))
                << "\"" << key << "\" used in " << entry.path().string() << " has no text";
        }
    }
    EXPECT_GT(keysSeen, 0) << "the walk found no lookups at all";
}

}  // namespace
}  // namespace tb
