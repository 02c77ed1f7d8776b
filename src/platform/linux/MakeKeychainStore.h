#pragma once

#include <memory>
#include <string>

#include "platform/KeychainStore.h"

namespace tb {

class ErrorReporter;
struct Paths;

// The keychain store of one identity for this desktop: the Secret Service when a session
// bus is configured and the service passes a quick probe (unlocked default collection, an
// entry written, read and deleted), else the 0600 file under `paths.support`/keychain. Logs
// which one it picked. The probe never waits on an unlock prompt.
std::unique_ptr<KeychainStore> makeKeychainStore(const std::string& identity,
                                                 const Paths& paths,
                                                 ErrorReporter& errors,
                                                 double probeTimeoutSeconds = 2.0);

}  // namespace tb
