#include "platform/linux/LinuxPlatform.h"

#include <iostream>

#include <malloc.h>

#include "platform/Clock.h"
#include "platform/ExternalSdks.h"
#include "platform/Log.h"
#include "platform/Reachability.h"
#include "platform/RunLoop.h"
#include "platform/linux/CurlHttpTransport.h"
#include "platform/linux/FileKeychainStore.h"
#include "platform/linux/FileUserDefaultsProvider.h"
#include "platform/linux/HttpRemoteConfig.h"
#include "platform/linux/JsonLinesErrorReporter.h"
#include "platform/linux/JsonLinesExternalSdks.h"
#include "platform/linux/LinuxReachability.h"
#include "platform/linux/MakeKeychainStore.h"
#include "platform/linux/SystemRandomSource.h"
#include "platform/linux/TerminalUIHost.h"

namespace tb {

namespace {

// Reachability when no service host is configured: always reachable over Wi-Fi, told once.
class AlwaysReachable final : public Reachability {
  public:
    explicit AlwaysReachable(MainQueue& queue) : queue_(queue) {}

    bool isReachable() const override { return true; }
    bool isReachableViaWiFi() const override { return true; }
    void startNotifier(std::function<void()> becameReachable,
                       std::function<void()> /*becameUnreachable*/) override {
        if (becameReachable) {
            queue_.post(std::move(becameReachable));
        }
    }

  private:
    MainQueue& queue_;
};

// The store reads a long list into records of a few kilobytes each and frees them all when
// the list goes. By default glibc hands such memory back to the system at once, and the next
// list faults every page of it in again: that doubled the time of reading a large library.
// Up to 64 MiB freed at the top of the heap are kept for reuse instead, and blocks up to
// 4 MiB (a list's array of records) come from the heap, not from a fresh mapping each time.
void keepFreedMemoryForReuse() {
    constexpr int kMiB = 1024 * 1024;
    mallopt(M_TRIM_THRESHOLD, 64 * kMiB);
    mallopt(M_TOP_PAD, 16 * kMiB);
    mallopt(M_MMAP_THRESHOLD, 4 * kMiB);
}

}  // namespace

std::unique_ptr<LinuxPlatform> LinuxPlatform::create(LinuxPlatformOptions options,
                                                     std::string* reason) {
    keepFreedMemoryForReuse();
    if (!options.paths.createAll(reason)) {
        return nullptr;
    }
    if (!options.serviceBaseURL.empty() && !hostAndPortOfURL(options.serviceBaseURL)) {
        if (reason) {
            *reason = "no host in the service URL " + options.serviceBaseURL;
        }
        return nullptr;
    }
    return std::unique_ptr<LinuxPlatform>(new LinuxPlatform(std::move(options)));
}

LinuxPlatform::LinuxPlatform(LinuxPlatformOptions options) : options_(std::move(options)) {
    const Paths& paths = options_.paths;
    runLoop_ = std::make_unique<RunLoop>();
    clock_ = std::make_unique<SystemClock>();
    errors_ = std::make_unique<JsonLinesErrorReporter>(paths.support, *clock_);
    defaults_ = std::make_unique<FileUserDefaultsProvider>(paths.config, *runLoop_, *errors_);
    if (options_.fileKeychainOnly) {
        keychain_ = std::make_unique<FileKeychainStore>(kKeychainIdentity, paths.support, *errors_);
        olderKeychain_ =
            std::make_unique<FileKeychainStore>(kOlderKeychainIdentity, paths.support, *errors_);
        logLine("[Keychain] file keychain only, under " + paths.support + "/keychain");
    } else {
        auto stores =
            makeKeychainStores(kKeychainIdentity, kOlderKeychainIdentity, paths, *errors_);
        keychain_ = std::move(stores.current);
        olderKeychain_ = std::move(stores.older);
    }
    http_ = std::make_unique<CurlHttpTransport>(*runLoop_);
    if (const auto host = hostAndPortOfURL(options_.serviceBaseURL)) {
        reachability_ = std::make_unique<LinuxReachability>(*host, *runLoop_);
    } else {
        reachability_ = std::make_unique<AlwaysReachable>(*runLoop_);
    }
    ui_ = std::make_unique<TerminalUIHost>(options_.terminal ? *options_.terminal : std::cout);
    random_ = std::make_unique<SystemRandomSource>();
    sdks_ = std::make_unique<JsonLinesExternalSdks>(paths.support, *clock_);
    remoteConfig_ = std::make_unique<HttpRemoteConfig>(*http_, *runLoop_, *errors_,
                                                       options_.remoteConfigURL, paths.support);
}

// Members go in reverse order of their making: the transport completes what is in flight
// onto the run loop, which outlives it; the defaults write what is unwritten.
LinuxPlatform::~LinuxPlatform() = default;

AppPorts LinuxPlatform::ports() const {
    AppPorts ports;
    ports.mainQueue = runLoop_.get();
    ports.clock = clock_.get();
    ports.defaults = defaults_.get();
    ports.keychain = keychain_.get();
    ports.olderKeychain = olderKeychain_.get();
    ports.http = http_.get();
    ports.errorReporter = errors_.get();
    ports.reachability = reachability_.get();
    ports.uiHost = ui_.get();
    ports.random = random_.get();
    ports.externalSdks = sdks_.get();
    ports.remoteConfig = remoteConfig_.get();
    return ports;
}

}  // namespace tb
