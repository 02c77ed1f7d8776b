#pragma once

#include <string>
#include <string_view>

#include <sys/types.h>

namespace tb {

// Small whole-file operations for the platform's own state files (user defaults, the file
// keychain).

// Replaces `path` with `contents` so that a crash at any moment leaves either the old file
// or the new one, never a mix: a temporary file in the same folder is written, flushed to
// disk, renamed over the target, and the folder itself is flushed so the rename is durable.
// The file gets `mode`. False with a reason on failure; the old file is then untouched.
bool writeFileAtomically(const std::string& path,
                         std::string_view contents,
                         mode_t mode,
                         std::string* reason = nullptr);

// Writes all of `contents` to the open file, going on after short writes and interrupted
// calls. False when the file refuses (disk full, I/O error), with errno set.
bool writeAll(int fd, std::string_view contents);

enum class FileRead { Read, Missing, Failed };

// Reads the whole file. Missing when there is no such file; Failed (with a reason) when it
// exists but can't be read.
FileRead readWholeFile(const std::string& path, std::string& contents, std::string* reason);

// Moves a broken file out of the way, to "<path>.corrupt-<seconds since 1970>", keeping it for
// a developer to look at. Returns the new path, or empty when it couldn't be moved.
std::string setFileAside(const std::string& path, double wallTime);

}  // namespace tb
