#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>
#include <sys/types.h>

namespace tb {

class ErrorReporter;

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

// Codes of the file errors the platform reports, as the platform's own file errors.
inline constexpr std::int64_t kFileUnreadable = 256;
inline constexpr std::int64_t kFileCorrupt = 259;

// Copies a state file that could be read only in part to "<path>.corrupt-<seconds since
// 1970>" and reports it in `domain` ("path", "copiedTo", "reason"); the file itself stays.
void keepCopyAside(const std::string& path,
                   ErrorReporter& errors,
                   const std::string& domain,
                   std::int64_t code,
                   const std::string& reason);

// Moves a broken state file out of the way, to "<path>.corrupt-<seconds since 1970>", keeping
// it for a developer to look at, and reports it in `domain` with the path ("path", "movedTo",
// "reason" in the user info). The owner then starts empty rather than stopping the app.
void setBrokenFileAside(const std::string& path,
                        ErrorReporter& errors,
                        const std::string& domain,
                        std::int64_t code,
                        const std::string& reason);

// Reads a state file that holds one JSON object. Nothing when there is no file yet. A file
// that can't be read, isn't JSON (or nests too deeply) or isn't an object is set aside and
// reported in `domain`, and gives nothing too.
std::optional<nlohmann::json> readJsonObjectFile(const std::string& path,
                                                 ErrorReporter& errors,
                                                 const std::string& domain);

}  // namespace tb
