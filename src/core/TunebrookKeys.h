#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Error.h"

namespace tb {

struct AppOptions;

// The service keys and the outside services' identifiers, by role, from a JSON keys file:
// one object whose members are the roles, each with a non-empty text value. The file comes
// from the command line (--keys) or is "keys.json" in the config folder; the demo writes one
// for the reference service. No key is ever part of the program's own text.
//
// The file is read once, when the instance is made (the context keeps one). A missing or
// unreadable file, malformed JSON, or a role that is absent or empty is a start-up error:
// error() names the file and the roles, and the app reports it and exits. After a clean
// load every role has a value; asking for one after a failed load is a programming fault.
class TunebrookKeys {
  public:
    static constexpr const char* kErrorDomain = "TunebrookKeys";
    enum ErrorCode : int {
        kFileUnreadable = 1,
        kFileMalformed = 2,
        kRoleMissing = 3,
        kRoleInvalid = 4,
    };

    explicit TunebrookKeys(const std::string& path);

    // The file the options name: keysFile, or "keys.json" in the config folder.
    static std::string pathFor(const AppOptions& options);

    // Every role the app asks for, in a fixed order.
    static std::vector<std::string> roles();

    const std::string& path() const { return path_; }
    const std::optional<Error>& error() const { return error_; }

    // The value of a role. Stops the process for a role the app doesn't know, or after a
    // failed load (the launch reports error() before anything asks).
    const std::string& value(const std::string& role) const;

    const std::string& tunebrookConsumerKey() const { return value("tunebrookConsumerKey"); }
    const std::string& tunebrookConsumerSecret() const { return value("tunebrookConsumerSecret"); }
    const std::string& wsUrlLive() const { return value("wsUrlLive"); }
    const std::string& wsUrlDev() const { return value("wsUrlDev"); }
    const std::string& embraceKey() const { return value("embraceKey"); }
    const std::string& bugsnagKey() const { return value("bugsnagKey"); }
    const std::string& comscoreId() const { return value("comscoreId"); }
    const std::string& comscoreSecret() const { return value("comscoreSecret"); }
    const std::string& twitterConsumerKey() const { return value("twitterConsumerKey"); }
    const std::string& twitterConsumerSecret() const { return value("twitterConsumerSecret"); }
    const std::string& oneSignalLiveKey() const { return value("oneSignalLiveKey"); }
    const std::string& zendeskAppId() const { return value("zendeskAppId"); }
    const std::string& zendeskClientId() const { return value("zendeskClientId"); }
    const std::string& zendeskUrl() const { return value("zendeskUrl"); }
    const std::string& googleClientId() const { return value("googleClientId"); }
    const std::string& appsFlyerKey() const { return value("appsFlyerKey"); }
    const std::string& appleAppIdWithoutId() const { return value("appleAppIdWithoutId"); }
    const std::string& mixpanelToken() const { return value("mixpanelToken"); }
    const std::string& mopubBannerId() const { return value("mopubBannerId"); }
    const std::string& mopubNativeAdId() const { return value("mopubNativeAdId"); }
    const std::string& mopub300x250Id() const { return value("mopub300x250Id"); }
    const std::string& mopubInterstitialId() const { return value("mopubInterstitialId"); }
    const std::string& mopubSoundOnInterstitialId() const {
        return value("mopubSoundOnInterstitialId");
    }
    const std::string& tapJoyKey() const { return value("tapJoyKey"); }
    const std::string& fyberAppId() const { return value("fyberAppId"); }

  private:
    void load();
    void fail(int code, const std::string& what, const std::string& roles = {});

    std::string path_;
    std::map<std::string, std::string> values_;
    std::optional<Error> error_;
};

}  // namespace tb
