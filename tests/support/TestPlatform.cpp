#include "support/TestPlatform.h"

namespace tb::test {

TestPlatform::TestPlatform() : TestPlatform(AppOptions{}) {}

TestPlatform::TestPlatform(AppOptions options) {
    if (options.paths.documents.empty()) {
        options.paths = Paths::underHome(home.path());
    }
    options.paths.createAll();
    AppPorts ports;
    ports.mainQueue = &queue;
    ports.clock = &queue.clock();
    ports.defaults = &defaults;
    ports.keychain = &keychain;
    ports.olderKeychain = &olderKeychain;
    ports.http = &http;
    ports.errorReporter = &errors;
    ports.reachability = &reachability;
    ports.uiHost = &ui;
    ports.random = &random;
    ports.externalSdks = &sdks;
    context_ = std::make_unique<AppContext>(ports, std::move(options));
}

TestPlatform::~TestPlatform() {
    context_.reset();
}

}  // namespace tb::test
