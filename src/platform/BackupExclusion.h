#pragma once

#include <string>

namespace tb {

// Marks a file as not to be backed up: the extended attribute "user.xdg.robots.backup" =
// "false", the convention that desktop backup tools read. False (and nothing changes) when
// the file is missing or its file system refuses user attributes.
bool excludeFromBackup(const std::string& path);

// True when the file carries the mark.
bool isExcludedFromBackup(const std::string& path);

}  // namespace tb
