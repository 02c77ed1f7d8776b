#include "tunebrook-service/KeysFile.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/core/FileUtil.h"

namespace tb::service {

bool KeysFile::write(const std::string& path,
                     const std::string& baseUrl,
                     const std::string& origin,
                     const std::string& consumerKey,
                     const std::string& consumerSecret) {
    static const char* const placeholders[] = {
        "embraceKey",       "bugsnagKey",          "comscoreId",
        "comscoreSecret",   "twitterConsumerKey",  "twitterConsumerSecret",
        "oneSignalLiveKey", "zendeskAppId",        "zendeskClientId",
        "googleClientId",   "appsFlyerKey",        "appleAppIdWithoutId",
        "mixpanelToken",    "mopubBannerId",       "mopubNativeAdId",
        "mopub300x250Id",   "mopubInterstitialId", "mopubSoundOnInterstitialId",
        "tapJoyKey",        "fyberAppId"};
    nlohmann::json keys = {{"wsUrlLive", baseUrl},
                           {"wsUrlDev", baseUrl},
                           {"tunebrookConsumerKey", consumerKey},
                           {"tunebrookConsumerSecret", consumerSecret},
                           {"zendeskUrl", origin + "/help/"}};
    for (const char* role : placeholders) {
        keys[role] = std::string("local-") + role;
    }
    return FileUtil::writeAtomically(path, keys.dump(2) + "\n", 0600);
}

}  // namespace tb::service
