#include "app/AppContext.h"

#include "platform/Fatal.h"
#include "platform/NotificationCenter.h"

namespace tb {

namespace {
AppContext* currentContext = nullptr;
}  // namespace

AppContext::AppContext(AppPorts ports, AppOptions options)
    : ports_(ports), options_(std::move(options)), previous_(currentContext) {
    if (!ports_.mainQueue || !ports_.clock || !ports_.defaults || !ports_.keychain ||
        !ports_.olderKeychain || !ports_.http || !ports_.errorReporter || !ports_.reachability ||
        !ports_.uiHost || !ports_.random || !ports_.externalSdks) {
        TB_FATAL("AppContext needs every port");
    }
    notificationCenter_ = std::make_unique<NotificationCenter>(*ports_.mainQueue);
    currentContext = this;
}

AppContext::~AppContext() {
    // Singletons may reach for each other while they go, so they leave newest first and
    // while this context is still current.
    while (!singletons_.empty()) {
        singletons_.pop_back();
    }
    notificationCenter_.reset();
    if (currentContext == this) {
        currentContext = previous_;
    }
}

AppContext& AppContext::current() {
    if (!currentContext) {
        TB_FATAL("No AppContext: the app's singletons need one");
    }
    return *currentContext;
}

bool AppContext::hasCurrent() {
    return currentContext != nullptr;
}

void* AppContext::findSingleton(const std::type_info& type) const {
    for (const auto& [index, instance] : singletons_) {
        if (index == std::type_index(type)) {
            return instance.get();
        }
    }
    return nullptr;
}

}  // namespace tb
