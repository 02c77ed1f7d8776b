#pragma once

#include <memory>
#include <string>

#include "api/SessionManager.h"
#include "api/XAuthRequestAdapter.h"

namespace tb {

class APIBaseURLProvider;
class BrowseAPI;
class BrowseAPIProvider;
class Clock;
class HttpTransport;
class MainQueue;
class RandomSource;
class SocialAPI;
class SocialAPIProvider;
class TBCoreDataManager;

// The typed request layer: two sessions over the HTTP port with the app's headers and a 30 s
// time-out, one plain and one whose every request is signed by the typed layer's own signer,
// and the request structs over the signed one, built at first use. It stands beside the
// catalogue's clients and shares nothing with them but the port.
class AlamofireNetworkLayer {
  public:
    struct Collaborators {
        HttpTransport& http;
        MainQueue& queue;
        RandomSource& random;
        Clock& clock;
        TBCoreDataManager& store;  // where the current user is saved
        std::unique_ptr<APIBaseURLProvider> baseURLProvider;
    };
    struct Keys {
        std::string consumerKey;
        std::string consumerSecret;
    };

    static constexpr double kTimeoutIntervalForRequest = 30.0;

    AlamofireNetworkLayer(Collaborators collaborators, const Keys& keys, std::string appVersion);
    ~AlamofireNetworkLayer();
    AlamofireNetworkLayer(const AlamofireNetworkLayer&) = delete;
    AlamofireNetworkLayer& operator=(const AlamofireNetworkLayer&) = delete;

    // Both sessions' configuration: the common headers, the app's version ("" when unknown)
    // and platform, and the time-out.
    static SessionManager::Configuration configuration(const std::string& appVersion);

    TBSessionManager& unsignedSessionManager() { return unsignedSessionManager_; }
    TBSessionManager& signedSessionManager() { return signedSessionManager_; }
    XAuthRequestAdapter& xAuthRequestAdapter() { return xAuthRequestAdapter_; }
    const APIBaseURLProvider& baseURLProvider() const { return *baseURLProvider_; }

    BrowseAPIProvider& browse();
    SocialAPIProvider& social();

  private:
    MainQueue& queue_;
    TBCoreDataManager& store_;
    std::unique_ptr<APIBaseURLProvider> baseURLProvider_;
    SessionManager unsignedSessionManager_;
    XAuthRequestAdapter xAuthRequestAdapter_;
    SessionManager signedSessionManager_;
    std::unique_ptr<BrowseAPI> browse_;
    std::unique_ptr<SocialAPI> social_;
};

}  // namespace tb
