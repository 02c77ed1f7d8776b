#pragma once

#include <memory>
#include <string>

#include "platform/KeychainStore.h"

namespace tb {

class ErrorReporter;
struct Paths;

// The current keychain store and the older one it migrates from.
struct KeychainStores {
    std::unique_ptr<KeychainStore> current;
    std::unique_ptr<KeychainStore> older;
};

// The keychain stores of one home on this desktop. The first start picks the Secret Service
// when a session bus is configured and the service passes a quick probe (unlocked default
// collection, an entry written, read and deleted), else the 0600 files under
// `paths.support`/keychain; a home that already has keychain files keeps them. The pick is
// written to "<support>/keychain/backend" and kept from then on, so that a session without
// the desktop's bus (ssh, cron) never starts a second keychain beside the first: when the
// Secret Service holds the keychain but doesn't answer, the stores of that run live in memory
// and nothing of the real keychain is overwritten. Logs what it picked. The probe runs at most
// once and never waits on an unlock prompt.
KeychainStores makeKeychainStores(const std::string& currentIdentity,
                                  const std::string& olderIdentity,
                                  const Paths& paths,
                                  ErrorReporter& errors,
                                  double probeTimeoutSeconds = 2.0);

}  // namespace tb
