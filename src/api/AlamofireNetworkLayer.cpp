#include "api/AlamofireNetworkLayer.h"

#include "api/APIBaseURLProvider.h"
#include "api/BrowseAPI.h"
#include "api/SocialAPI.h"

namespace tb {

AlamofireNetworkLayer::AlamofireNetworkLayer(Collaborators collaborators,
                                             const Keys& keys,
                                             std::string appVersion)
    : queue_(collaborators.queue),
      store_(collaborators.store),
      baseURLProvider_(std::move(collaborators.baseURLProvider)),
      unsignedSessionManager_(collaborators.http, configuration(appVersion)),
      xAuthRequestAdapter_(XAuthSigner({keys.consumerKey, keys.consumerSecret, "HMAC-SHA1", "1.0"},
                                       collaborators.random,
                                       collaborators.clock)),
      signedSessionManager_(collaborators.http, configuration(appVersion)) {
    signedSessionManager_.setAdapter(&xAuthRequestAdapter_);
    // The activity indicator of a phone's status bar has no counterpart here.
}

AlamofireNetworkLayer::~AlamofireNetworkLayer() = default;

SessionManager::Configuration AlamofireNetworkLayer::configuration(const std::string& appVersion) {
    return SessionManager::Configuration{
        {
            {"Accept-Language", "en;q=1.0"},
            {"X-Application-Version", appVersion},
            // The service tells clients apart by this value, and knows this one.
            {"X-Application-Platform", "ios"},
        },
        kTimeoutIntervalForRequest,
    };
}

BrowseAPIProvider& AlamofireNetworkLayer::browse() {
    if (!browse_) {
        browse_ = std::make_unique<BrowseAPI>(signedSessionManager_, *baseURLProvider_, queue_);
    }
    return *browse_;
}

SocialAPIProvider& AlamofireNetworkLayer::social() {
    if (!social_) {
        social_ =
            std::make_unique<SocialAPI>(signedSessionManager_, *baseURLProvider_, queue_, store_);
    }
    return *social_;
}

}  // namespace tb
