#include "app/TBAppDelegate.h"

#include "accounts/TBCredentials.h"
#include "accounts/TBKeychainManager.h"
#include "ads/InterstitialsManager.h"
#include "api/API.h"
#include "api/TBDataManager.h"
#include "api/TBReachabilityManager.h"
#include "api/TBServiceEnvironment.h"
#include "api/TBXAuthClientManager.h"
#include "app/AppContext.h"
#include "core/LocationManager.h"
#include "core/TBConstants.h"
#include "core/TBLinks.h"
#include "core/TBPermisionsManager.h"
#include "core/TBPreferencesRepository.h"
#include "core/TunebrookKeys.h"
#include "core/URLComponents.h"
#include "model/TBUtil.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "platform/ErrorReporter.h"
#include "platform/ExternalSdks.h"
#include "platform/Fatal.h"
#include "platform/NotificationCenter.h"
#include "platform/RandomSource.h"

namespace tb {

namespace {

constexpr const char* kAppScheme = "tunebrook";
constexpr const char* kKeyQueryPrefix = "key=";

std::string removeAll(std::string text, const std::string& part) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at)) {
        text.erase(at, part.size());
    }
    return text;
}

}  // namespace

TBAppDelegate::TBAppDelegate(AppContext& context) : context_(context) {
    buildLaunchSequence();
}

TBAppDelegate::~TBAppDelegate() = default;

TBAppDelegate& TBAppDelegate::shared() {
    return AppContext::current().appDelegate();
}

TBKeychainManager& TBAppDelegate::keychainManager() {
    return context_.keychainManager();
}

// The order matters: the crash reporters start before anything that could crash, the
// install marker is written before the libraries that read it, and the environment is
// chosen before the store and the network start. Steps that join later take their place
// by name: the pending link after "push"; Branch and
// Facebook after "location"; cast, cache housekeeping and sync after "OneSignal", before
// "featured music"; ad providers after "Zendesk"; Mixpanel after
// "messaging and Google sign-in"; the notification centre's delegate after "AppsFlyer".
void TBAppDelegate::buildLaunchSequence() {
    const std::vector<std::pair<const char*, std::string (TBAppDelegate::*)()>> steps = {
        {"keys", &TBAppDelegate::createKeyStoreAndKeychain},
        {"crash reporter pick", &TBAppDelegate::pickCrashReporter},
        {"Embrace", &TBAppDelegate::startEmbrace},
        {"Crashlytics and Answers", &TBAppDelegate::startFabric},
        {"Bugsnag", &TBAppDelegate::startBugsnag},
        {"fresh install", &TBAppDelegate::markInstall},
        {"ComScore", &TBAppDelegate::startComScore},
        {"Twitter", &TBAppDelegate::startTwitter},
        {"Firebase", &TBAppDelegate::configureFirebase},
        {"environment", &TBAppDelegate::chooseEnvironment},
        {"store", &TBAppDelegate::openStore},
        {"token restore", &TBAppDelegate::restoreToken},
        {"reachability", &TBAppDelegate::startReachability},
        {"push", &TBAppDelegate::enablePushIfGranted},
        {"location", &TBAppDelegate::updateLocationIfEnabled},
        {"OneSignal", &TBAppDelegate::startOneSignal},
        {"featured music", &TBAppDelegate::getFeaturedMusic},
        {"Zendesk", &TBAppDelegate::startZendesk},
        {"messaging and Google sign-in", &TBAppDelegate::startMessagingAndGoogleSignIn},
        {"AppsFlyer", &TBAppDelegate::startAppsFlyer},
    };
    for (const auto& [name, member] : steps) {
        sequence_.append({name, [this, member = member] { return (this->*member)(); }});
    }
}

std::optional<Error> TBAppDelegate::didFinishLaunchingWithOptions(
    const UserInfo& /*launchOptions*/) {
    const auto& keys = context_.keys();
    if (keys.error()) {
        return keys.error();
    }
    records_ = sequence_.run();
    return std::nullopt;
}

std::string TBAppDelegate::createKeyStoreAndKeychain() {
    const auto& keys = context_.keys();
    keychainManager();
    return std::to_string(TunebrookKeys::roles().size()) + " roles from " + keys.path();
}

// Half the devices report through each of the two crash reporters. The pick lives in the
// keychain, which outlives a reinstall, so a device keeps its reporter for good.
std::string TBAppDelegate::pickCrashReporter() {
    const auto& names = TBConstants::TBKeychainKeys();
    auto& keychain = keychainManager();
    const bool alreadyPicked = keychain.boolForKey(names.crashReportingSDKPicked);
    if (!alreadyPicked) {
        const auto draw = context_.random().uniform(100);
        keychain.setWithBool(draw >= 50, names.embraceEnabled);
        keychain.setWithBool(draw < 50, names.bugsnagEnabled);
        keychain.setWithBool(true, names.crashReportingSDKPicked);
    }
    std::string picked = keychain.boolForKey(names.embraceEnabled)   ? "Embrace"
                         : keychain.boolForKey(names.bugsnagEnabled) ? "Bugsnag"
                                                                     : "none";
    return alreadyPicked ? picked + " (kept)" : picked;
}

std::string TBAppDelegate::startEmbrace() {
    if (!keychainManager().boolForKey(TBConstants::TBKeychainKeys().embraceEnabled)) {
        return "skipped";
    }
    context_.errorReporter().startReporter("Embrace", context_.keys().embraceKey());
    return "started";
}

std::string TBAppDelegate::startFabric() {
    context_.errorReporter().startReporter("Crashlytics", "");
    context_.errorReporter().startReporter("Answers", "");
    return "started";
}

std::string TBAppDelegate::startBugsnag() {
    if (!keychainManager().boolForKey(TBConstants::TBKeychainKeys().bugsnagEnabled)) {
        return "skipped";
    }
    auto& reporter = context_.errorReporter();
    reporter.startReporter("Bugsnag", context_.keys().bugsnagKey());
    const auto stage = TBUtil::releaseStage(TBUtil::buildType());
    if (!stage) {
        return "started";
    }
    reporter.setReleaseStage(*stage);
    return "started, stage " + *stage;
}

// The interstitial time stamp doubles as the install marker: writing it now makes the very
// next start not fresh, even when this one is killed before it ends.
std::string TBAppDelegate::markInstall() {
    auto& interstitials = context_.interstitials();
    freshInstall_ = interstitials.isFreshInstall();
    if (freshInstall_) {
        interstitials.setInterstitialAdNotShown();
    }
    return freshInstall_ ? "yes" : "no";
}

// The outside libraries are started with the roles of their keys, never the values.
std::string TBAppDelegate::startComScore() {
    context_.externalSdks().start("SCORAnalytics.start", {{"publisherId", "comscoreId"},
                                                          {"publisherSecret", "comscoreSecret"}});
    return "started";
}

std::string TBAppDelegate::startTwitter() {
    context_.externalSdks().start(
        "TWTRTwitter.start",
        {{"consumerKey", "twitterConsumerKey"}, {"consumerSecret", "twitterConsumerSecret"}});
    return "started";
}

std::string TBAppDelegate::configureFirebase() {
    context_.externalSdks().start("FIRApp.configure", {});
    return "configured";
}

std::string TBAppDelegate::chooseEnvironment() {
    liveEnvironment_ = TBPreferencesRepository(context_.defaults(), context_.notificationCenter())
                           .liveEnvironment();
    if (liveEnvironment_) {
        context_.environment().useProd();
    } else {
        context_.environment().useDev();
    }
    return liveEnvironment_ ? "live" : "dev";
}

std::string TBAppDelegate::openStore() {
    auto& data = context_.dataManager();
    data.startup();
    if (!data.keptBrokenStorePath().empty()) {
        return "rebuilt; the broken store is kept at " + data.keptBrokenStorePath();
    }
    const auto& coordinator = data.persistentStoreCoordinator();
    if (data.managedObjectContext() && !coordinator->hasPersistentStore()) {
        return "can't be read; the app goes on without it";
    }
    return data.managedObjectContext() ? "open" : "unavailable";
}

// All three request paths hold the stored token before the first request goes out.
std::string TBAppDelegate::restoreToken() {
    auto& credentials = context_.credentials();
    const auto token = credentials.token();
    const auto tokenSecret = credentials.tokenSecret();
    if (!token || !tokenSecret) {
        return "no token";
    }
    const auto expiration = credentials.tokenExpiration();
    auto& clients = context_.clients();
    clients.client().setToken(*token, *tokenSecret, expiration);
    clients.jsonClient().setToken(*token, *tokenSecret, expiration);
    context_.api().setCredentialsWithToken(*token, *tokenSecret);
    return "restored";
}

std::string TBAppDelegate::startReachability() {
    auto& reachability = context_.reachabilityManager();
    reachability.start();
    return reachability.isOffline() ? "started, offline" : "started";
}

std::string TBAppDelegate::enablePushIfGranted() {
    auto& permissions = context_.permissions();
    if (!permissions.pushGranted()) {
        return "not granted";
    }
    permissions.enablePush();
    return "enabled";
}

std::string TBAppDelegate::updateLocationIfEnabled() {
    auto& location = context_.location();
    if (!location.isEnabled()) {
        return "disabled";
    }
    location.updateLocation();
    return "updating";
}

std::string TBAppDelegate::startOneSignal() {
    context_.externalSdks().start("OneSignal.init", {{"appId", "oneSignalLiveKey"},
                                                     {"kOSSettingsKeyAutoPrompt", "false"},
                                                     {"inFocusDisplayType", "2"},
                                                     {"logLevel", "1"},
                                                     {"visualLevel", "0"}});
    return "started";
}

std::string TBAppDelegate::startZendesk() {
    auto& sdks = context_.externalSdks();
    sdks.start(
        "ZDKZendesk.initialize",
        {{"appId", "zendeskAppId"}, {"clientId", "zendeskClientId"}, {"zendeskUrl", "zendeskUrl"}});
    sdks.start("ZDKCoreLogger.enable", {{"logLevel", "3"}});
    sdks.start("ZDKTheme.primaryColor", {{"color", TBConstants::Colors().orange}});
    sdks.start("ZDKSupport.initialize", {});
    return "started";
}

std::string TBAppDelegate::startMessagingAndGoogleSignIn() {
    auto& sdks = context_.externalSdks();
    sdks.start("FIRMessaging.delegate", {});
    sdks.start("GIDSignIn.clientID", {{"clientID", "googleClientId"}});
    return "started";
}

std::string TBAppDelegate::startAppsFlyer() {
    context_.externalSdks().start(
        "AppsFlyerTracker.start",
        {{"devKey", "appsFlyerKey"}, {"appleAppID", "appleAppIdWithoutId"}});
    return "started";
}

// Posted at resign on purpose, not at the real entry into the background: the player and
// the ads react while an incoming call or the notification shade covers the app.
void TBAppDelegate::applicationWillResignActive() {
    // The ad providers stop here (TBAdProvidersHelper::stopAds) once they exist.
    context_.notificationCenter().post(TBConstants::TBGlobalNotifications().didEnterBackground);
}

std::string TBAppDelegate::getFeaturedMusic() {
    context_.dataManager().getFeaturedMusic();
    return "requested";
}

void TBAppDelegate::applicationWillEnterForeground() {
    context_.dataManager().getFeaturedMusic();
}

// Posted at active on purpose, so that a fresh start posts it too.
void TBAppDelegate::applicationDidBecomeActive() {
    auto& sdks = context_.externalSdks();
    sdks.start("FBSDKAppEvents.activateApp", {});
    sdks.start("AppsFlyerTracker.trackAppLaunch", {});
    if (firstDidBecomeActiveExecuted_) {
        // The ad providers restart here (TBAdProvidersHelper::restartAds) once they exist.
    }
    firstDidBecomeActiveExecuted_ = true;
    context_.notificationCenter().post(TBConstants::TBGlobalNotifications().willEnterForeground);
}

bool TBAppDelegate::applicationOpenURL(const std::string& url, const UserInfo& /*options*/) {
    const auto notification = notificationForURL(url);
    if (!notification) {
        return false;
    }
    // The deep links take the notification here (TBDeeplinkManager setNotification, then
    // handleCachedNotification).
    return true;
}

std::optional<UserInfo> TBAppDelegate::notificationForURL(const std::string& url) {
    const auto parts = URLComponents::parse(url);
    if (!parts || parts->scheme != kAppScheme) {
        return std::nullopt;
    }
    const std::string id =
        parts->path.empty() || parts->path[0] != '/' ? parts->path : parts->path.substr(1);
    if (!TBLinks::isLinkId(id)) {
        return std::nullopt;
    }
    UserInfo notification{{"type", parts->host}, {"id", id}};
    if (!id.empty() && parts->query.rfind(kKeyQueryPrefix, 0) == 0) {
        notification["params"] = UserInfo{{"key", removeAll(parts->query, kKeyQueryPrefix)}};
    }
    return notification;
}

}  // namespace tb
