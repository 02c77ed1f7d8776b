#pragma once

#include <string>

#include "platform/Error.h"

namespace tb {

// The crash reporters the app starts and records non-fatal errors with. On Linux they are
// one JSON-lines file; tests use a recorder.
class ErrorReporter {
  public:
    virtual ~ErrorReporter() = default;

    // Records an error with its domain, code, user info and additional information.
    virtual void recordError(const Error& error, const ErrorInfo& additionalInfo = {}) = 0;

    // Starts a reporting library by name ("Embrace", "Crashlytics", "Answers", "Bugsnag").
    // The key is never written anywhere.
    virtual void startReporter(const std::string& name, const std::string& key) = 0;

    // Bugsnag's release stage: "Debug", "AdHoc", "TestFlight" or "Production".
    virtual void setReleaseStage(const std::string& stage) = 0;

    // Embrace's end of the app start-up moment.
    virtual void endAppStartup() = 0;
};

}  // namespace tb
