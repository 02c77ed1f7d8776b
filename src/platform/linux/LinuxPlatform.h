#pragma once

#include <iosfwd>
#include <memory>
#include <string>

#include "platform/AppPorts.h"
#include "platform/Paths.h"

namespace tb {

class CurlHttpTransport;
class ErrorReporter;
class ExternalSdks;
class FileUserDefaultsProvider;
class KeychainStore;
class Reachability;
class RemoteConfig;
class RunLoop;
class SystemClock;
class SystemRandomSource;
class TerminalUIHost;

struct LinuxPlatformOptions {
    Paths paths;
    // The service's base URL, whose host reachability watches; empty: always reachable.
    std::string serviceBaseURL;
    // Where the terminal host prints; null: standard output.
    std::ostream* terminal = nullptr;
    // File keychain only, even where a Secret Service answers (runs under a throw-away
    // home that must leave the desktop's keyring alone).
    bool fileKeychainOnly = false;
    // Where the config service answers the remote values; empty: every fetch fails.
    std::string remoteConfigURL = {};
};

// The real ports of one process on Linux, made in the order they depend on each other and
// destroyed in reverse: the run loop of the constructing (main) thread, the system clock,
// the error reporter, user defaults, the current and older keychain stores, the HTTP
// transport, reachability, the terminal UI host, random numbers, the outside SDKs and the
// remote config store.
class LinuxPlatform {
  public:
    // The identities of the two keychain stores.
    static constexpr const char* kKeychainIdentity = "com.tunebrook.iphone.valet";
    static constexpr const char* kOlderKeychainIdentity = "com.tunebrook.iphone.fxkeychain";

    // Creates the folders and the ports. Nothing, with a reason, when the folders can't be
    // made or the base URL names no host.
    static std::unique_ptr<LinuxPlatform> create(LinuxPlatformOptions options,
                                                 std::string* reason = nullptr);
    ~LinuxPlatform();
    LinuxPlatform(const LinuxPlatform&) = delete;
    LinuxPlatform& operator=(const LinuxPlatform&) = delete;

    AppPorts ports() const;
    RunLoop& runLoop() const { return *runLoop_; }
    const Paths& paths() const { return options_.paths; }

  private:
    explicit LinuxPlatform(LinuxPlatformOptions options);

    LinuxPlatformOptions options_;
    std::unique_ptr<RunLoop> runLoop_;
    std::unique_ptr<SystemClock> clock_;
    std::unique_ptr<ErrorReporter> errors_;
    std::unique_ptr<FileUserDefaultsProvider> defaults_;
    std::unique_ptr<KeychainStore> keychain_;
    std::unique_ptr<KeychainStore> olderKeychain_;
    std::unique_ptr<CurlHttpTransport> http_;
    std::unique_ptr<Reachability> reachability_;
    std::unique_ptr<TerminalUIHost> ui_;
    std::unique_ptr<SystemRandomSource> random_;
    std::unique_ptr<ExternalSdks> sdks_;
    std::unique_ptr<RemoteConfig> remoteConfig_;
};

}  // namespace tb
