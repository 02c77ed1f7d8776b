#include "api/TBXAuthClientManager.h"

#include "platform/SharedInstance.h"

namespace tb {

TBXAuthClientManager::TBXAuthClientManager(AFXAuthClient::Environment environment,
                                           std::function<Settings()> readSettings)
    : environment_(std::move(environment)), readSettings_(std::move(readSettings)) {}

TBXAuthClientManager::TBXAuthClientManager(AFXAuthClient::Environment environment,
                                           std::string baseURL,
                                           std::string consumerKey,
                                           std::string consumerSecret)
    : environment_(std::move(environment)),
      settings_(Settings{std::move(baseURL), std::move(consumerKey), std::move(consumerSecret)}) {}

TBXAuthClientManager::~TBXAuthClientManager() = default;

TBXAuthClientManager& TBXAuthClientManager::sharedManager() {
    return SharedInstance<TBXAuthClientManager>::get();
}

AFXAuthClient& TBXAuthClientManager::client() {
    if (!client_) {
        client_ = std::make_unique<AFXAuthClient>(settings().baseURL, settings().consumerKey,
                                                  settings().consumerSecret, 0, environment_);
    }
    return *client_;
}

AFXAuthClient& TBXAuthClientManager::jsonClient() {
    if (!jsonClient_) {
        jsonClient_ = std::make_unique<AFXAuthClient>(settings().baseURL, settings().consumerKey,
                                                      settings().consumerSecret, 1, environment_);
    }
    return *jsonClient_;
}

const TBXAuthClientManager::Settings& TBXAuthClientManager::settings() {
    if (!settings_) {
        settings_ = readSettings_();
    }
    return *settings_;
}

}  // namespace tb
