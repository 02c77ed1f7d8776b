#include "support/TestKeys.h"

#include <fstream>

#include <nlohmann/json.hpp>

#include "core/TunebrookKeys.h"

namespace tb::test {

std::string testKeysJson(const std::string& without) {
    nlohmann::json keys = nlohmann::json::object();
    for (const auto& role : TunebrookKeys::roles()) {
        keys[role] = "test-" + role;
    }
    keys["wsUrlLive"] = "https://api.tunebrook.test/v1/";
    keys["wsUrlDev"] = "http://127.0.0.1:8081/v1/";
    keys.erase(without);
    return keys.dump(2);
}

void writeTestKeys(const std::string& path, const std::string& without) {
    std::ofstream(path, std::ios::trunc) << testKeysJson(without);
}

}  // namespace tb::test
