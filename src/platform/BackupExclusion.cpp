#include "platform/BackupExclusion.h"

#include <cstring>

#include <sys/xattr.h>

namespace tb {

namespace {

constexpr const char* kAttribute = "user.xdg.robots.backup";
constexpr const char* kExcluded = "false";

}  // namespace

bool excludeFromBackup(const std::string& path) {
    return setxattr(path.c_str(), kAttribute, kExcluded, std::strlen(kExcluded), 0) == 0;
}

bool isExcludedFromBackup(const std::string& path) {
    char value[16] = {};
    const ssize_t size = getxattr(path.c_str(), kAttribute, value, sizeof value - 1);
    return size == static_cast<ssize_t>(std::strlen(kExcluded)) &&
           std::memcmp(value, kExcluded, static_cast<std::size_t>(size)) == 0;
}

}  // namespace tb
