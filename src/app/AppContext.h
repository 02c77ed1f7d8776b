#pragma once

#include <memory>
#include <string>
#include <typeindex>
#include <utility>
#include <vector>

#include "platform/Paths.h"

namespace tb {

class Clock;
class ErrorReporter;
class ExternalSdks;
class HttpTransport;
class KeychainStore;
class MainQueue;
class NotificationCenter;
class RandomSource;
class Reachability;
class UIHost;
class UserDefaultsProvider;

// The ports this process runs on. The composition root (the Linux app, or a test) owns them
// and must keep them alive for as long as the AppContext.
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
};

struct AppOptions {
    Paths paths;
    std::string keysFile;  // empty: "keys.json" in the config folder
    std::string appVersion = "0.0.0";
};

// The composition root of the app's logic. It holds the ports and makes the app's
// singletons on first use, each constructed with a reference to this context. The system's
// shared accessors (TBDataManager::sharedManager() and the like) answer with the instance of
// the current context; a test builds a fresh context with fakes and throws it away.
//
// Contexts nest: the newest one alive is current, and destroying it makes the previous one
// current again.
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
    NotificationCenter& notificationCenter() const { return *notificationCenter_; }

    const Paths& paths() const { return options_.paths; }
    const AppOptions& options() const { return options_; }

    // The one instance of T in this context, made on first use as T(*this). Singletons are
    // destroyed in reverse order of their making.
    template <typename T>
    T& singleton() {
        if (void* found = findSingleton(typeid(T))) {
            return *static_cast<T*>(found);
        }
        auto made = std::make_shared<T>(*this);
        T& result = *made;
        singletons_.emplace_back(std::type_index(typeid(T)), std::move(made));
        return result;
    }

    // True when the singleton of T has been made in this context.
    template <typename T>
    bool hasSingleton() const {
        return findSingleton(typeid(T)) != nullptr;
    }

  private:
    void* findSingleton(const std::type_info& type) const;

    AppPorts ports_;
    AppOptions options_;
    std::unique_ptr<NotificationCenter> notificationCenter_;
    std::vector<std::pair<std::type_index, std::shared_ptr<void>>> singletons_;
    AppContext* previous_;
};

}  // namespace tb
