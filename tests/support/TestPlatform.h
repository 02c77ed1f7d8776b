#pragma once

#include <memory>

#include "app/AppContext.h"
#include "platform/ManualQueue.h"
#include "platform/MemoryKeychainStore.h"
#include "platform/MemoryUserDefaults.h"
#include "support/FakeHttpTransport.h"
#include "support/Recorders.h"
#include "support/ScriptedRemoteConfig.h"
#include "support/TempDir.h"

namespace tb::test {

// A whole app context on fakes: virtual time, in-memory defaults and keychains, a scripted
// transport, recorders, and folders in a temp dir. Each test makes its own and drops it.
class TestPlatform {
  public:
    TestPlatform();
    explicit TestPlatform(AppOptions options);
    ~TestPlatform();

    AppContext& context() { return *context_; }

    // The fakes as ports, for another context over the same device (a later launch).
    AppPorts ports();

    ManualQueue queue;
    MemoryUserDefaultsProvider defaults;
    MemoryKeychainStore keychain;
    MemoryKeychainStore olderKeychain;
    FakeHttpTransport http{queue};
    RecordingErrorReporter errors;
    SettableReachability reachability{queue};
    RecordingUIHost ui;
    ScriptedRandomSource random;
    RecordingExternalSdks sdks;
    ScriptedRemoteConfig remoteConfig;
    TempDir home;

  private:
    std::unique_ptr<AppContext> context_;
};

}  // namespace tb::test
