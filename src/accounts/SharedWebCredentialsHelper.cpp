#include "accounts/SharedWebCredentialsHelper.h"

#include <nlohmann/json.hpp>

#include "platform/JSON.h"
#include "platform/KeychainStore.h"
#include "platform/Log.h"
#include "platform/SharedInstance.h"

namespace tb {

SharedWebCredentialsHelper::SharedWebCredentialsHelper(KeychainStore& store, std::string webHost)
    : store_(store), webHost_(std::move(webHost)) {}

SharedWebCredentialsHelper& SharedWebCredentialsHelper::sharedInstance() {
    return SharedInstance<SharedWebCredentialsHelper>::get();
}

std::string SharedWebCredentialsHelper::key() const {
    return "sharedWebCredentials:" + webHost_;
}

void SharedWebCredentialsHelper::checkSafariCredentials(const CredentialsBlock& block) {
    const auto data = store_.dataForKey(key());
    const JSON entry = data ? JSON::parse(*data) : JSON();
    const auto account = entry["account"].string();
    const auto password = entry["password"].string();
    if (block) {
        block(account && password ? account : std::nullopt, account ? password : std::nullopt);
    }
}

void SharedWebCredentialsHelper::saveCredentials(const std::string& account,
                                                 const std::string& password) {
    const nlohmann::json entry = {{"account", account}, {"password", password}};
    if (!store_.setData(key(), entry.dump())) {
        logLine("SharedWebCredentails SAVE error: the keychain refused the entry for " + webHost_);
    }
}

// Only the entry of that account is removed.
void SharedWebCredentialsHelper::removeCredentials(const std::string& account) {
    const auto data = store_.dataForKey(key());
    if (!data || JSON::parse(*data)["account"].string() != account) {
        return;
    }
    if (!store_.removeObjectForKey(key())) {
        logLine(
            "SharedWebCredentails DELETE error: the keychain refused to remove the entry "
            "for " +
            webHost_);
    }
}

}  // namespace tb
