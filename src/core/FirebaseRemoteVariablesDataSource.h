#pragma once

#include <memory>

#include "core/RemoteVariablesDataSource.h"
#include "platform/RemoteConfig.h"

namespace tb {

class MainQueue;
class TBLogger;

// The source that decides every remote value: it registers the app's defaults, fetches the
// current set from the config service every time (no expiration) and activates it when the
// fetch succeeded. Its promise rejects with a fetch or activation error; a fetch that ends
// without success and without an error fulfils and changes nothing.
class FirebaseRemoteVariablesDataSource final : public RemoteVariablesDataSource {
  public:
    FirebaseRemoteVariablesDataSource(RemoteConfig& store, MainQueue& queue, TBLogger& logger);
    ~FirebaseRemoteVariablesDataSource() override;
    FirebaseRemoteVariablesDataSource(const FirebaseRemoteVariablesDataSource&) = delete;
    FirebaseRemoteVariablesDataSource& operator=(const FirebaseRemoteVariablesDataSource&) = delete;

    // Every key with its default, in the order they are registered.
    static RemoteConfigDefaults defaults();

    Promise<void> fetch() override;

  private:
    RemoteConfig& store_;
    MainQueue& queue_;
    TBLogger& logger_;
    // A fetch that ends after this source is gone settles its promise and nothing else.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tb
