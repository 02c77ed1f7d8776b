#pragma once

#include <string>

namespace tb {

// FileSystem's backup mark as free functions, for the callers that don't take a FileSystem
// yet; the platform implementation defines them. On Linux the mark is the extended attribute
// "user.xdg.robots.backup" = "false", the convention desktop backup tools read.

bool excludeFromBackup(const std::string& path);

bool isExcludedFromBackup(const std::string& path);

}  // namespace tb
