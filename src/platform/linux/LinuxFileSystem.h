#pragma once

#include "platform/FileSystem.h"

namespace tb {

// FileSystem on Linux: atomic writes through a temporary file, flushed and renamed, with the
// folder flushed after; the backup mark as an extended attribute.
class LinuxFileSystem final : public FileSystem {
  public:
    bool writeAtomically(const std::string& path,
                         std::string_view bytes,
                         std::string* reason = nullptr) override;
    bool readFile(const std::string& path,
                  std::string& bytes,
                  std::string* reason = nullptr) override;
    bool excludeFromBackup(const std::string& path) override;
    bool isExcludedFromBackup(const std::string& path) override;
};

}  // namespace tb
