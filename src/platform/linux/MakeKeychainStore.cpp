#include "platform/linux/MakeKeychainStore.h"

#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/linux/FileKeychainStore.h"
#include "platform/linux/SecretServiceKeychainStore.h"

namespace tb {

std::unique_ptr<KeychainStore> makeKeychainStore(const std::string& identity,
                                                 const Paths& paths,
                                                 ErrorReporter& errors,
                                                 double probeTimeoutSeconds) {
    auto secretService = std::make_unique<SecretServiceKeychainStore>(identity);
    std::string reason;
    if (secretService->probe(probeTimeoutSeconds, &reason)) {
        logLine("[Keychain] " + identity + ": Secret Service");
        return secretService;
    }
    auto file = std::make_unique<FileKeychainStore>(identity, paths.support, errors);
    logLine("[Keychain] " + identity + ": file " + file->path() + " (" + reason + ")");
    return file;
}

}  // namespace tb
