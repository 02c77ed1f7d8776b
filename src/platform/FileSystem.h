#pragma once

#include <string>
#include <string_view>

namespace tb {

// The files the app writes for itself: downloaded artwork, the debug export, the store. The
// Linux implementation is LinuxFileSystem.
class FileSystem {
  public:
    virtual ~FileSystem() = default;

    // Replaces the file at `path` with `bytes` so that a reader (or a crash) sees the old file
    // or the whole new one, never a part. A symlink at `path` is replaced, never written
    // through. False with a reason when the folder refuses; no temporary file is left then.
    virtual bool writeAtomically(const std::string& path,
                                 std::string_view bytes,
                                 std::string* reason = nullptr) = 0;

    // The whole file; false (and a reason) when it can't be read.
    virtual bool readFile(const std::string& path,
                          std::string& bytes,
                          std::string* reason = nullptr) = 0;

    // Marks a file as not to be backed up. False (and nothing changes) when the file is
    // missing, is a symlink, or its file system refuses the mark.
    virtual bool excludeFromBackup(const std::string& path) = 0;

    // True when the file carries the mark.
    virtual bool isExcludedFromBackup(const std::string& path) = 0;
};

}  // namespace tb
