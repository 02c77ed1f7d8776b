#include "platform/linux/JsonLinesExternalSdks.h"

#include <nlohmann/json.hpp>

#include "platform/Clock.h"

namespace tb {

JsonLinesExternalSdks::JsonLinesExternalSdks(const std::string& supportFolder, const Clock& clock)
    : clock_(clock), file_(supportFolder + "/sdks.jsonl") {}

void JsonLinesExternalSdks::start(const std::string& library,
                                  const std::map<std::string, std::string>& settings) {
    append({{"time", clock_.now()}, {"library", library}, {"settings", settings}});
}

void JsonLinesExternalSdks::call(const std::string& function,
                                 const std::map<std::string, std::string>& arguments) {
    append({{"time", clock_.now()}, {"call", function}, {"arguments", arguments}});
}

void JsonLinesExternalSdks::append(const nlohmann::json& record) {
    file_.appendLine(record.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

}  // namespace tb
