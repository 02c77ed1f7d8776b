#include "api/TBXAuthClientManager.h"

#include "api/TBServiceEnvironment.h"
#include "app/AppContext.h"
#include "core/TBToastUtils.h"
#include "core/TunebrookKeys.h"

namespace tb {

namespace {

// The catalogue's base URL, as the launch chose it (TBDataManager::useProd/useDev).
std::string catalogueBaseURL(AppContext& context) {
    return context.singleton<TBServiceEnvironment>().baseURL();
}

AFXAuthClient::Environment environmentOf(AppContext& context) {
    return AFXAuthClient::Environment{
        context.http(),
        context.mainQueue(),
        context.random(),
        context.clock(),
        context.options().appVersion,
        [&context] { context.singleton<TBToastUtils>().showOfflineToast(); },
    };
}

}  // namespace

TBXAuthClientManager::TBXAuthClientManager(AppContext& context)
    : environment_(environmentOf(context)), readSettings_([&context] {
          const auto& keys = context.singleton<TunebrookKeys>();
          return Settings{catalogueBaseURL(context), keys.tunebrookConsumerKey(),
                          keys.tunebrookConsumerSecret()};
      }) {}

TBXAuthClientManager::TBXAuthClientManager(AFXAuthClient::Environment environment,
                                           std::string baseURL,
                                           std::string consumerKey,
                                           std::string consumerSecret)
    : environment_(std::move(environment)),
      settings_(Settings{std::move(baseURL), std::move(consumerKey), std::move(consumerSecret)}) {}

TBXAuthClientManager::~TBXAuthClientManager() = default;

TBXAuthClientManager& TBXAuthClientManager::sharedManager() {
    return AppContext::current().singleton<TBXAuthClientManager>();
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
