#pragma once

#include <string>

#include "platform/Paths.h"

namespace tb {

class Clock;
class ErrorReporter;
class ExternalSdks;
class HttpTransport;
class KeychainStore;
class MainQueue;
class RandomSource;
class Reachability;
class RemoteConfig;
class UIHost;
class UserDefaultsProvider;

// The ports this process runs on. Whoever makes them (the Linux platform, or a test) owns
// them and keeps them alive for as long as anything built on them.
struct AppPorts {
    MainQueue* mainQueue = nullptr;
    Clock* clock = nullptr;
    UserDefaultsProvider* defaults = nullptr;
    KeychainStore* keychain = nullptr;       // the current store ("com.tunebrook.iphone.valet")
    KeychainStore* olderKeychain = nullptr;  // the older store that values migrate from
    HttpTransport* http = nullptr;
    ErrorReporter* errorReporter = nullptr;
    Reachability* reachability = nullptr;
    UIHost* uiHost = nullptr;
    RandomSource* random = nullptr;
    ExternalSdks* externalSdks = nullptr;
    RemoteConfig* remoteConfig = nullptr;
};

struct AppOptions {
    Paths paths;
    std::string keysFile;  // empty: "keys.json" in the config folder
    std::string appVersion = "0.0.0";
    // The service's web host (its site pages, share links, the host reachability watches);
    // empty: the origin of the live API address, where the service answers both.
    std::string webURL;
    // A JSON file with the tokens of the listener's social accounts (see GivenSocialSignIn);
    // empty: none.
    std::string socialTokensFile;
};

}  // namespace tb
