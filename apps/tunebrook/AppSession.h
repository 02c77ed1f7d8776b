#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include "platform/Error.h"

namespace tb {

class AppContext;
class LinuxPlatform;
class RunLoop;

struct SessionOptions {
    std::string home;      // empty: the XDG folders
    std::string keysFile;  // empty: keys.json in the config folder
    bool json = false;     // commands print JSON records instead of lines for people
};

// One run of the app on this machine: its folders, the platform, the app's context and the
// launch. Commands reach the app's logic through it. Main thread only.
class AppSession {
  public:
    explicit AppSession(SessionOptions options);
    ~AppSession();
    AppSession(const AppSession&) = delete;
    AppSession& operator=(const AppSession&) = delete;

    // Makes the folders, builds the platform and the context, and runs the launch, writing
    // one line per step to `out` ("launch: crash reporter pick -> Bugsnag"). Nothing on
    // success; on failure the error, and nothing of the app has started.
    std::optional<Error> launch(std::ostream& out);

    AppContext& context();
    bool jsonOutput() const { return options_.json; }
    RunLoop& runLoop();

    // Runs the main queue until `done` is true or the time is up; returns done().
    bool runUntil(const std::function<bool()>& done, double timeoutSeconds);

  private:
    static constexpr double kSettleSeconds = 5;

    void settleLaunchRequests();

    SessionOptions options_;
    std::unique_ptr<LinuxPlatform> platform_;
    std::unique_ptr<AppContext> context_;
};

}  // namespace tb
