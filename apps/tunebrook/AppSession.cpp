#include "AppSession.h"

#include <iostream>
#include <ostream>

#include "SocialTokensFile.h"
#include "accounts/TBUserManager.h"
#include "api/TBXAuthClientManager.h"
#include "app/AppContext.h"
#include "app/TBAppDelegate.h"
#include "core/TBLinks.h"
#include "core/TunebrookKeys.h"
#include "core/URLComponents.h"
#include "platform/Fatal.h"
#include "platform/RunLoop.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/XdgPaths.h"

namespace tb {

namespace {
constexpr const char* kErrorDomain = "tunebrook";

// The remote values come from one config store whatever environment the launch picks; on
// this machine the reference service behind the live address answers for it.
std::string remoteConfigURL(const TunebrookKeys& keys) {
    const auto live = URLComponents::parse(keys.wsUrlLive());
    return live && !live->host.empty() ? live->origin() + "/remote-config" : std::string();
}

}  // namespace

AppSession::AppSession(SessionOptions options) : options_(std::move(options)) {}

// The context goes first: its managers may still reach the ports while they go.
AppSession::~AppSession() {
    context_.reset();
    platform_.reset();
}

std::optional<Error> AppSession::launch(std::ostream& out) {
    AppOptions appOptions;
    appOptions.paths = options_.home.empty() ? xdgPaths() : Paths::underHome(options_.home);
    appOptions.keysFile = options_.keysFile;
    appOptions.appVersion = TB_VERSION;
    appOptions.socialTokensFile = SocialTokensFile::pathIn(appOptions.paths);

    // The key store is read before anything is made, so that a broken one leaves no trace;
    // reachability watches the service's web host, which it names.
    const TunebrookKeys keys(TunebrookKeys::pathFor(appOptions));
    if (keys.error()) {
        return keys.error();
    }
    LinuxPlatformOptions platformOptions;
    platformOptions.paths = appOptions.paths;
    platformOptions.serviceBaseURL = TBLinks::webHostFor(appOptions, keys);
    platformOptions.remoteConfigURL = remoteConfigURL(keys);
    // A run under its own home leaves the desktop's keyring alone.
    platformOptions.fileKeychainOnly = !options_.home.empty();
    // With --json the records are the whole of stdout; toasts and alerts go beside the
    // launch's lines.
    if (options_.json) {
        platformOptions.terminal = &std::cerr;
    }
    std::string reason;
    platform_ = LinuxPlatform::create(std::move(platformOptions), &reason);
    if (!platform_) {
        return Error{kErrorDomain, 1, reason, {}};
    }

    context_ = std::make_unique<AppContext>(platform_->ports(), std::move(appOptions));
    auto& app = context_->appDelegate();
    if (auto error = app.didFinishLaunchingWithOptions()) {
        return error;
    }
    for (const auto& record : app.launchRecords()) {
        out << "launch: " << record.name << " -> " << record.outcome << '\n';
    }
    out.flush();
    settleLaunchRequests();
    return std::nullopt;
}

// A stored token may have lapsed since the last run. The launch's own requests (the featured
// music) find that out first and renew it; a command's request sent meanwhile would meet a
// refresh under way, which fails it at once. So commands start once those have settled, or
// after a few seconds when the service is slow.
void AppSession::settleLaunchRequests() {
    auto& clients = context_->clients();
    auto& users = context_->userManager();
    runUntil(
        [&] {
            return clients.client().requestsInFlight() == 0 &&
                   clients.jsonClient().requestsInFlight() == 0 && !users.refreshingToken();
        },
        kSettleSeconds);
}

AppContext& AppSession::context() {
    if (!context_) {
        TB_FATAL("AppSession: no context before the launch");
    }
    return *context_;
}

RunLoop& AppSession::runLoop() {
    if (!platform_) {
        TB_FATAL("AppSession: no run loop before the launch");
    }
    return platform_->runLoop();
}

bool AppSession::runUntil(const std::function<bool()>& done, double timeoutSeconds) {
    return runLoop().runUntil(done, timeoutSeconds);
}

}  // namespace tb
