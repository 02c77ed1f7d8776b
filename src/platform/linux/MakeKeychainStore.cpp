#include "platform/linux/MakeKeychainStore.h"

#include <filesystem>

#include <sys/stat.h>

#include "platform/Log.h"
#include "platform/MemoryKeychainStore.h"
#include "platform/Paths.h"
#include "platform/linux/AtomicFile.h"
#include "platform/linux/FileKeychainStore.h"
#include "platform/linux/SecretServiceKeychainStore.h"

namespace tb {

namespace {

constexpr const char* kSecretService = "secret-service";
constexpr const char* kFiles = "file";

std::string backendMarkerPath(const Paths& paths) {
    return FileKeychainStore::folderIn(paths.support) + "/backend";
}

std::string readBackend(const Paths& paths) {
    std::string contents;
    if (readWholeFile(backendMarkerPath(paths), contents, nullptr) != FileRead::Read) {
        return {};
    }
    while (!contents.empty() && (contents.back() == '\n' || contents.back() == ' ')) {
        contents.pop_back();
    }
    return contents;
}

void keepBackend(const Paths& paths, const std::string& backend) {
    std::error_code ec;
    std::filesystem::create_directories(paths.support, ec);
    ::mkdir(FileKeychainStore::folderIn(paths.support).c_str(), 0700);
    std::string reason;
    if (!writeFileAtomically(backendMarkerPath(paths), backend + "\n", 0600, &reason)) {
        logLine("[Keychain] can't note the keychain's place: " + reason);
    }
}

// A home whose keychain files already hold entries keeps them, whatever answers now.
bool fileKeychainExists(const std::string& identity, const Paths& paths) {
    std::error_code ec;
    return std::filesystem::exists(FileKeychainStore::pathFor(identity, paths.support), ec);
}

KeychainStores fileStores(const std::string& currentIdentity,
                          const std::string& olderIdentity,
                          const Paths& paths,
                          ErrorReporter& errors,
                          const std::string& why) {
    auto current = std::make_unique<FileKeychainStore>(currentIdentity, paths.support, errors);
    logLine("[Keychain] " + currentIdentity + ": file " + current->path() + " (" + why + ")");
    return {std::move(current),
            std::make_unique<FileKeychainStore>(olderIdentity, paths.support, errors)};
}

}  // namespace

KeychainStores makeKeychainStores(const std::string& currentIdentity,
                                  const std::string& olderIdentity,
                                  const Paths& paths,
                                  ErrorReporter& errors,
                                  double probeTimeoutSeconds) {
    const std::string backend = readBackend(paths);
    if (backend == kFiles) {
        return fileStores(currentIdentity, olderIdentity, paths, errors, "kept for this home");
    }
    if (backend.empty() &&
        (fileKeychainExists(currentIdentity, paths) || fileKeychainExists(olderIdentity, paths))) {
        keepBackend(paths, kFiles);
        return fileStores(currentIdentity, olderIdentity, paths, errors,
                          "this home's keychain files");
    }

    auto current = std::make_unique<SecretServiceKeychainStore>(currentIdentity);
    std::string reason;
    if (current->probe(probeTimeoutSeconds, &reason)) {
        if (backend.empty()) {
            keepBackend(paths, kSecretService);
        }
        logLine("[Keychain] " + currentIdentity + ": Secret Service");
        return {std::move(current), std::make_unique<SecretServiceKeychainStore>(olderIdentity)};
    }
    if (backend == kSecretService) {
        logLine("[Keychain] " + currentIdentity +
                ": the Secret Service holds this home's keychain but doesn't answer (" + reason +
                "); nothing is kept this run");
        return {std::make_unique<MemoryKeychainStore>(), std::make_unique<MemoryKeychainStore>()};
    }
    keepBackend(paths, kFiles);
    return fileStores(currentIdentity, olderIdentity, paths, errors, reason);
}

}  // namespace tb
