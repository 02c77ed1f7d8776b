#include "platform/linux/LinuxFileSystem.h"

#include "platform/AtomicWrite.h"
#include "platform/BackupExclusion.h"

namespace tb {

bool LinuxFileSystem::writeAtomically(const std::string& path,
                                      std::string_view bytes,
                                      std::string* reason) {
    return atomicWrite(path, bytes, reason);
}

bool LinuxFileSystem::readFile(const std::string& path, std::string& bytes, std::string* reason) {
    return readFileBytes(path, bytes, reason);
}

bool LinuxFileSystem::excludeFromBackup(const std::string& path) {
    return tb::excludeFromBackup(path);
}

bool LinuxFileSystem::isExcludedFromBackup(const std::string& path) {
    return tb::isExcludedFromBackup(path);
}

}  // namespace tb
