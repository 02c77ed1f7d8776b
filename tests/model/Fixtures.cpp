#include "Fixtures.h"

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace tb::test {

JSON fixture(const std::string& name) {
    const std::string path = std::string(TB_SOURCE_DIR) + "/tests/model/fixtures/" + name;
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    JSON json = JSON::parse(text.str());
    EXPECT_TRUE(json.exists()) << "fixture did not parse: " << path;
    return json;
}

}  // namespace tb::test
