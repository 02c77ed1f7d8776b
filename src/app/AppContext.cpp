#include "app/AppContext.h"

#include <utility>

#include "accounts/GivenSocialSignIn.h"
#include "accounts/SharedWebCredentialsHelper.h"
#include "accounts/TBCredentials.h"
#include "accounts/TBKeychainManager.h"
#include "accounts/TBUserManager.h"
#include "accounts/TBUserRepository.h"
#include "ads/InterstitialsManager.h"
#include "api/API.h"
#include "api/AlamofireNetworkLayer.h"
#include "api/TBAPIBaseURLProvider.h"
#include "api/TBDataManager.h"
#include "api/TBReachabilityManager.h"
#include "api/TBServiceEnvironment.h"
#include "api/TBSessionGateHolder.h"
#include "api/TBXAuthClientManager.h"
#include "app/TBAppDelegate.h"
#include "core/LocationManager.h"
#include "core/RemoteVariables.h"
#include "core/TBLinks.h"
#include "core/TBLogger.h"
#include "core/TBPermisionsManager.h"
#include "core/TBToastUtils.h"
#include "core/TunebrookKeys.h"
#include "core/VendorIdentifier.h"
#include "model/ItemDAO.h"
#include "model/TBCoreDataManager.h"
#include "offline/ItemDownloadManager.h"
#include "offline/TBMusicDownloadManager.h"
#include "platform/Fatal.h"
#include "platform/NotificationCenter.h"
#include "platform/RecordedMixpanelExperiments.h"
#include "platform/SharedInstance.h"
#include "platform/UserDefaults.h"

namespace tb {

namespace {

AppContext* currentContext = nullptr;

// A manager, installed for the system's shared accessor while it lives.
template <typename T>
struct Installed {
    template <typename... Args>
    explicit Installed(Args&&... args) : object(std::forward<Args>(args)...), scope(object) {}

    T object;
    typename SharedInstance<T>::Scope scope;
};

// The links need a clean key store; after a failed load the launch stops before anything
// reads them.
TBLinks linksFor(const AppOptions& options, const TunebrookKeys& keys) {
    if (keys.error()) {
        return TBLinks();
    }
    return TBLinks(TBLinks::webHostFor(options, keys), keys.appleAppIdWithoutId());
}

AFXAuthClient::Environment clientEnvironment(const AppPorts& ports,
                                             const AppOptions& options,
                                             TBToastUtils& toasts) {
    return AFXAuthClient::Environment{
        *ports.http,  *ports.mainQueue,   *ports.random,
        *ports.clock, options.appVersion, [&toasts] { toasts.showOfflineToast(); },
    };
}

// The typed layer over the app's ports. Its signer needs a clean key store; after a failed
// load the launch stops before anything is sent.
AlamofireNetworkLayer::Collaborators layerCollaborators(const AppPorts& ports,
                                                        NotificationCenter& notifications,
                                                        TBServiceEnvironment& environment,
                                                        TBCoreDataManager& store) {
    return AlamofireNetworkLayer::Collaborators{
        *ports.http,
        *ports.mainQueue,
        *ports.random,
        *ports.clock,
        store,
        std::make_unique<TBAPIBaseURLProvider>(*ports.defaults, notifications, environment)};
}

AlamofireNetworkLayer::Keys layerKeys(const TunebrookKeys& keys) {
    if (keys.error()) {
        return {};
    }
    return {keys.tunebrookConsumerKey(), keys.tunebrookConsumerSecret()};
}

// Linux has no advertising identifier, so the listener is never tracked by one.
std::optional<std::string> noAdvertisingIdentifier() {
    return std::nullopt;
}

}  // namespace

// Members are built in the order they are declared, which is the start order, and go in
// reverse; each is installed while it lives.
struct AppContext::Managers {
    Managers(AppContext& app, const AppPorts& ports, const AppOptions& options)
        : notifications(*ports.mainQueue),
          keys(TunebrookKeys::pathFor(options)),
          links(linksFor(options, keys)),
          experiments(*ports.externalSdks, *ports.mainQueue),
          remoteVariables(*ports.remoteConfig, experiments, *ports.mainQueue, logger.object),
          toasts(*ports.uiHost, notifications),
          permissions(ports.defaults->standard(), *ports.clock),
          interstitials(ports.defaults->standard(), *ports.clock),
          environment(keys),
          reachability(ports.reachability, notifications),
          clients(clientEnvironment(ports, options, toasts.object),
                  [this] {
                      return TBXAuthClientManager::Settings{environment.baseURL(),
                                                            keys.tunebrookConsumerKey(),
                                                            keys.tunebrookConsumerSecret()};
                  }),
          data(options.paths.documents,
               *ports.errorReporter,
               TBDataManager::Catalogue{
                   environment,
                   {clients.object, reachability.object, toasts.object, sessionGate,
                    *ports.errorReporter},
                   *ports.mainQueue,
                   notifications,
                   *ports.random,
               }),
          coreData(data.object,
                   ports.defaults->standard(),
                   *ports.errorReporter,
                   *ports.uiHost,
                   *ports.mainQueue),
          networkLayer(layerCollaborators(ports, notifications, environment, coreData.object),
                       layerKeys(keys),
                       options.appVersion),
          api(networkLayer.xAuthRequestAdapter()),
          dao(coreData.object),
          music(*ports.mainQueue,
                *ports.http,
                ItemDownloadManager::Collaborators{coreData.object, dao, *ports.errorReporter,
                                                   notifications}),
          itemDownloads(music.object.items()),
          keychainManager(*ports.keychain, *ports.olderKeychain),
          credentials(TBCredentials::Collaborators{keychainManager, *ports.defaults,
                                                   coreData.object, clients.object, api,
                                                   *ports.externalSdks, notifications}),
          webCredentials(*ports.keychain, keys.error() ? "" : TBLinks::webHostFor(options, keys)),
          socialSignIn(GivenSocialSignIn::tokensFromFile(options.socialTokensFile)),
          userManager(TBUserManager::Collaborators{
              credentials.object,
              clients.object,
              api,
              reachability.object,
              toasts.object,
              *ports.errorReporter,
              *ports.uiHost,
              *ports.mainQueue,
              *ports.externalSdks,
              socialSignIn,
              noAdvertisingIdentifier,
              vendorIdentifier(ports.defaults->standard(), *ports.random),
          }),
          userRepository(credentials.object,
                         {[this] { return remoteVariables.object.boolValue("tester"); },
                          [this] { return dao.offlineDownloadsCount(); }}),
          appDelegate(app) {
        // The store and its error policy refer to each other; this is where they meet. The
        // DAO asks the downloads, which sit above it, what is on its way. The catalogue's 401
        // branch refreshes through the session.
        data.object.setErrorPolicy(&coreData.object);
        dao.setDownloadActivity(&music.object);
        sessionGate.install(&userManager.object);
    }

    ~Managers() {
        sessionGate.install(nullptr);
        data.object.setErrorPolicy(nullptr);
        dao.setDownloadActivity(nullptr);
    }

    NotificationCenter notifications;
    const TunebrookKeys keys;
    Installed<TBLinks> links;
    Installed<TBLogger> logger;
    RecordedMixpanelExperiments experiments;
    Installed<RemoteVariables> remoteVariables;
    Installed<TBToastUtils> toasts;
    Installed<TBPermisionsManager> permissions;
    Installed<LocationManager> location;
    Installed<InterstitialsManager> interstitials;
    TBServiceEnvironment environment;
    Installed<TBReachabilityManager> reachability;
    TBSessionGateHolder sessionGate;
    Installed<TBXAuthClientManager> clients;
    Installed<TBDataManager> data;
    Installed<TBCoreDataManager> coreData;
    AlamofireNetworkLayer networkLayer;
    API api;
    ItemDAO dao;
    Installed<TBMusicDownloadManager> music;
    SharedInstance<ItemDownloadManager>::Scope itemDownloads;
    TBKeychainManager keychainManager;
    Installed<TBCredentials> credentials;
    Installed<SharedWebCredentialsHelper> webCredentials;
    GivenSocialSignIn socialSignIn;
    Installed<TBUserManager> userManager;
    TBUserRepository userRepository;
    Installed<TBAppDelegate> appDelegate;
};

AppContext::AppContext(AppPorts ports, AppOptions options)
    : ports_(ports), options_(std::move(options)), previous_(currentContext) {
    if (!ports_.mainQueue || !ports_.clock || !ports_.defaults || !ports_.keychain ||
        !ports_.olderKeychain || !ports_.http || !ports_.errorReporter || !ports_.reachability ||
        !ports_.uiHost || !ports_.random || !ports_.externalSdks || !ports_.remoteConfig) {
        TB_FATAL("AppContext needs every port");
    }
    currentContext = this;
    managers_ = std::make_unique<Managers>(*this, ports_, options_);
}

AppContext::~AppContext() {
    managers_.reset();
    if (currentContext == this) {
        currentContext = previous_;
    }
}

AppContext& AppContext::current() {
    if (!currentContext) {
        TB_FATAL("No AppContext: the app's managers need one");
    }
    return *currentContext;
}

bool AppContext::hasCurrent() {
    return currentContext != nullptr;
}

NotificationCenter& AppContext::notificationCenter() const {
    return managers_->notifications;
}

const TunebrookKeys& AppContext::keys() const {
    return managers_->keys;
}

const TBLinks& AppContext::links() const {
    return managers_->links.object;
}

TBLogger& AppContext::logger() const {
    return managers_->logger.object;
}

RemoteVariables& AppContext::remoteVariables() const {
    return managers_->remoteVariables.object;
}

TBToastUtils& AppContext::toasts() const {
    return managers_->toasts.object;
}

TBPermisionsManager& AppContext::permissions() const {
    return managers_->permissions.object;
}

LocationManager& AppContext::location() const {
    return managers_->location.object;
}

InterstitialsManager& AppContext::interstitials() const {
    return managers_->interstitials.object;
}

TBServiceEnvironment& AppContext::environment() const {
    return managers_->environment;
}

TBReachabilityManager& AppContext::reachabilityManager() const {
    return managers_->reachability.object;
}

TBSessionGateHolder& AppContext::sessionGate() const {
    return managers_->sessionGate;
}

TBXAuthClientManager& AppContext::clients() const {
    return managers_->clients.object;
}

TBDataManager& AppContext::dataManager() const {
    return managers_->data.object;
}

TBCoreDataManager& AppContext::coreDataManager() const {
    return managers_->coreData.object;
}

AlamofireNetworkLayer& AppContext::networkLayer() const {
    return managers_->networkLayer;
}

API& AppContext::api() const {
    return managers_->api;
}

ItemDAO& AppContext::itemDAO() const {
    return managers_->dao;
}

TBMusicDownloadManager& AppContext::musicDownloads() const {
    return managers_->music.object;
}

ItemDownloadManager& AppContext::itemDownloads() const {
    return managers_->music.object.items();
}

TBKeychainManager& AppContext::keychainManager() const {
    return managers_->keychainManager;
}

TBUserRepository& AppContext::userRepository() const {
    return managers_->userRepository;
}

TBCredentials& AppContext::credentials() const {
    return managers_->credentials.object;
}

TBUserManager& AppContext::userManager() const {
    return managers_->userManager.object;
}

TBAppDelegate& AppContext::appDelegate() const {
    return managers_->appDelegate.object;
}

}  // namespace tb
