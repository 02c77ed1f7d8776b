#pragma once

#include <string>

#include "platform/ErrorReporter.h"
#include "platform/linux/JsonLinesFile.h"

namespace tb {

class Clock;

// The crash reporters on Linux: one JSON object per line in "<support>/errors.jsonl", each
// with "time" (seconds since 1970) and "kind":
//   "error"           domain, code, message, userInfo, additionalInfo
//   "start"           name (the reporter's key is never written)
//   "releaseStage"    stage
//   "appStartupEnded"
class JsonLinesErrorReporter final : public ErrorReporter {
  public:
    JsonLinesErrorReporter(const std::string& supportFolder, const Clock& clock);

    void recordError(const Error& error, const ErrorInfo& additionalInfo = {}) override;
    void startReporter(const std::string& name, const std::string& key) override;
    void setReleaseStage(const std::string& stage) override;
    void endAppStartup() override;

    const std::string& path() const { return file_.path(); }

  private:
    const Clock& clock_;
    JsonLinesFile file_;
};

}  // namespace tb
