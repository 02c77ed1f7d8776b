#include "support/TestPlatform.h"

#include <filesystem>

#include "core/TunebrookKeys.h"
#include "support/TestKeys.h"

namespace tb::test {

TestPlatform::TestPlatform() : TestPlatform(AppOptions{}) {}

TestPlatform::TestPlatform(AppOptions options) {
    if (options.paths.documents.empty()) {
        options.paths = Paths::underHome(home.path());
    }
    options.paths.createAll();
    // Unless the test names its own keys file, the context reads a complete one, as the
    // app's always does.
    if (const auto keys = TunebrookKeys::pathFor(options);
        options.keysFile.empty() && !std::filesystem::exists(keys)) {
        writeTestKeys(keys);
    }
    context_ = std::make_unique<AppContext>(ports(), std::move(options));
}

AppPorts TestPlatform::ports() {
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
    ports.remoteConfig = &remoteConfig;
    return ports;
}

TestPlatform::~TestPlatform() {
    context_.reset();
}

}  // namespace tb::test
