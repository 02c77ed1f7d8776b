#include "platform/linux/JsonLinesErrorReporter.h"

#include <nlohmann/json.hpp>

#include "platform/Clock.h"

namespace tb {

namespace {

using Json = nlohmann::json;

// Messages and user info may carry anything; bytes that aren't UTF-8 are replaced rather
// than losing the record.
std::string lineOf(const Json& record) {
    return record.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

JsonLinesErrorReporter::JsonLinesErrorReporter(const std::string& supportFolder, const Clock& clock)
    : clock_(clock), file_(supportFolder + "/errors.jsonl") {}

void JsonLinesErrorReporter::recordError(const Error& error, const ErrorInfo& additionalInfo) {
    file_.appendLine(lineOf({{"time", clock_.now()},
                             {"kind", "error"},
                             {"domain", error.domain},
                             {"code", error.code},
                             {"message", error.message},
                             {"userInfo", error.userInfo},
                             {"additionalInfo", additionalInfo}}));
}

void JsonLinesErrorReporter::startReporter(const std::string& name, const std::string& /*key*/) {
    file_.appendLine(lineOf({{"time", clock_.now()}, {"kind", "start"}, {"name", name}}));
}

void JsonLinesErrorReporter::setReleaseStage(const std::string& stage) {
    file_.appendLine(lineOf({{"time", clock_.now()}, {"kind", "releaseStage"}, {"stage", stage}}));
}

void JsonLinesErrorReporter::endAppStartup() {
    file_.appendLine(lineOf({{"time", clock_.now()}, {"kind", "appStartupEnded"}}));
}

}  // namespace tb
