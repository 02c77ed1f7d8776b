#pragma once

#include <map>
#include <string>

namespace tb {

// The closed libraries that the launch sequence starts and that do nothing else the app's
// logic can see (measurement, social sign-in set-up, help desk, ...). Each start is one call
// with the library's name and its settings; on Linux it is recorded, so the start order can
// be checked. Libraries with behaviour of their own (analytics, ads, cast) get their own ports.
// Later calls into such libraries that change nothing the app reads back (an identity reset
// at sign-out, say) go through call() and are recorded the same way.
class ExternalSdks {
  public:
    virtual ~ExternalSdks() = default;

    // `library` names the library and call, such as "ComScore.start" or "FIRApp.configure";
    // settings never carry secrets in clear: callers pass key roles, not key values.
    virtual void start(const std::string& library,
                       const std::map<std::string, std::string>& settings) = 0;

    // `function` names the library and call, such as "OneSignal.removeExternalUserId".
    virtual void call(const std::string& function,
                      const std::map<std::string, std::string>& arguments) = 0;
};

}  // namespace tb
