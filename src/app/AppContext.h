#pragma once

#include <memory>

#include "platform/AppPorts.h"

namespace tb {

class API;
class AlamofireNetworkLayer;
class InterstitialsManager;
class ItemDAO;
class ItemDownloadManager;
class LocationManager;
class NotificationCenter;
class RemoteVariables;
class TBAppDelegate;
class TBCredentials;
class TBKeychainManager;
class TBCoreDataManager;
class TBDataManager;
class TBLogger;
class TBPermisionsManager;
class TBReachabilityManager;
class TBServiceEnvironment;
class TBSessionGateHolder;
class TBToastUtils;
class TBUserManager;
class TBUserRepository;
class TBMusicDownloadManager;
class TBXAuthClientManager;
class TunebrookKeys;
struct TBLinks;

// The composition root of the app's logic. It holds the ports and builds every manager once,
// eagerly, in start order, handing each the ports and managers it uses through its
// constructor. It installs each for the system's shared accessors (TBDataManager::
// sharedManager() and the like), which the code below this folder never calls.
//
// Contexts nest: the newest one alive is current and its managers are installed; destroying
// it puts the previous one back.
class AppContext {
  public:
    AppContext(AppPorts ports, AppOptions options);
    ~AppContext();
    AppContext(const AppContext&) = delete;
    AppContext& operator=(const AppContext&) = delete;

    // The current context. A call without one is a programming fault and stops the process.
    static AppContext& current();
    static bool hasCurrent();

    MainQueue& mainQueue() const { return *ports_.mainQueue; }
    Clock& clock() const { return *ports_.clock; }
    UserDefaultsProvider& defaults() const { return *ports_.defaults; }
    KeychainStore& keychain() const { return *ports_.keychain; }
    KeychainStore& olderKeychain() const { return *ports_.olderKeychain; }
    HttpTransport& http() const { return *ports_.http; }
    ErrorReporter& errorReporter() const { return *ports_.errorReporter; }
    Reachability& reachability() const { return *ports_.reachability; }
    UIHost& uiHost() const { return *ports_.uiHost; }
    RandomSource& random() const { return *ports_.random; }
    ExternalSdks& externalSdks() const { return *ports_.externalSdks; }
    RemoteConfig& remoteConfig() const { return *ports_.remoteConfig; }
    NotificationCenter& notificationCenter() const;

    const Paths& paths() const { return options_.paths; }
    const AppOptions& options() const { return options_; }

    // The managers, in the order they are built.
    const TunebrookKeys& keys() const;
    const TBLinks& links() const;
    TBLogger& logger() const;
    RemoteVariables& remoteVariables() const;
    TBToastUtils& toasts() const;
    TBPermisionsManager& permissions() const;
    LocationManager& location() const;
    InterstitialsManager& interstitials() const;
    TBServiceEnvironment& environment() const;
    TBReachabilityManager& reachabilityManager() const;
    TBSessionGateHolder& sessionGate() const;
    TBXAuthClientManager& clients() const;
    TBDataManager& dataManager() const;
    TBCoreDataManager& coreDataManager() const;
    AlamofireNetworkLayer& networkLayer() const;
    API& api() const;
    ItemDAO& itemDAO() const;
    TBMusicDownloadManager& musicDownloads() const;
    ItemDownloadManager& itemDownloads() const;
    TBKeychainManager& keychainManager() const;
    TBCredentials& credentials() const;
    TBUserManager& userManager() const;
    TBUserRepository& userRepository() const;
    TBAppDelegate& appDelegate() const;

  private:
    struct Managers;

    AppPorts ports_;
    AppOptions options_;
    AppContext* previous_;
    std::unique_ptr<Managers> managers_;
};

}  // namespace tb
