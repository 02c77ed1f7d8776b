#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/LaunchSequence.h"
#include "platform/Error.h"
#include "platform/UserInfo.h"

namespace tb {

class AppContext;
class TBKeychainManager;

// The application object: the launch order, and the answers to what the platform tells the
// app as a whole (active, background, links). One per context; the splash and the shell
// read freshInstall here.
//
// The launch is a list of named steps (launchSequence()) run in order, on the main queue,
// synchronously. A piece that joins the launch inserts its step before or after the one it
// must follow; launchRecords() tells what ran and what each step did.
class TBAppDelegate {
  public:
    explicit TBAppDelegate(AppContext& context);
    ~TBAppDelegate();
    TBAppDelegate(const TBAppDelegate&) = delete;
    TBAppDelegate& operator=(const TBAppDelegate&) = delete;

    static TBAppDelegate& shared();

    // Runs the launch. Nothing on success. When the key store can't be read, nothing runs
    // and its error comes back: the app reports it and exits.
    std::optional<Error> didFinishLaunchingWithOptions(const UserInfo& launchOptions = {});

    LaunchSequence& launchSequence() { return sequence_; }
    const std::vector<LaunchRecord>& launchRecords() const { return records_; }

    // Platform events.
    void applicationWillResignActive();
    void applicationDidEnterBackground() {}
    // Refreshes the featured music.
    void applicationWillEnterForeground();
    void applicationDidBecomeActive();
    void applicationWillTerminate() {}

    // A link opened from outside. The app's own scheme is always taken; other links go to
    // the sign-in libraries, none of which exist on Linux.
    bool applicationOpenURL(const std::string& url, const UserInfo& options = {});

    // What a "tunebrook://TYPE/ID?key=K" link carries for the deep links: "type" (the host),
    // "id" (the path without its leading "/") and, only for a non-empty id whose query
    // begins with "key=", "params" = {"key": the query without any "key="}. Nothing for
    // another scheme, a malformed link, or an id that holds "/" or "..".
    static std::optional<UserInfo> notificationForURL(const std::string& url);

    // Taken once during the launch and kept for the life of the process.
    bool freshInstall() const { return freshInstall_; }
    bool freshInstallTooltipShown() const { return freshInstallTooltipShown_; }
    void setFreshInstallTooltipShown(bool shown) { freshInstallTooltipShown_ = shown; }
    bool firstDidBecomeActiveExecuted() const { return firstDidBecomeActiveExecuted_; }
    // Nothing until the first attribution callback of this process.
    const std::optional<bool>& appsFlyerFirstOpen() const { return appsFlyerFirstOpen_; }

    // The service environment the launch chose: true for live, false for the test host.
    bool liveEnvironment() const { return liveEnvironment_; }

    TBKeychainManager& keychainManager();

  private:
    void buildLaunchSequence();
    std::string createKeyStoreAndKeychain();
    std::string pickCrashReporter();
    std::string startEmbrace();
    std::string startFabric();
    std::string startBugsnag();
    std::string markInstall();
    std::string startComScore();
    std::string startTwitter();
    std::string configureFirebase();
    std::string chooseEnvironment();
    std::string openStore();
    std::string restoreToken();
    std::string startReachability();
    std::string enablePushIfGranted();
    std::string updateLocationIfEnabled();
    std::string startOneSignal();
    std::string getFeaturedMusic();
    std::string startZendesk();
    std::string startMessagingAndGoogleSignIn();
    std::string startAppsFlyer();

    AppContext& context_;
    LaunchSequence sequence_;
    std::vector<LaunchRecord> records_;
    bool freshInstall_ = false;
    bool freshInstallTooltipShown_ = false;
    bool firstDidBecomeActiveExecuted_ = false;
    std::optional<bool> appsFlyerFirstOpen_;
    bool liveEnvironment_ = true;
};

}  // namespace tb
