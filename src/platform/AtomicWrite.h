#pragma once

#include <string>
#include <string_view>

namespace tb {

// Replaces the file at `path` with `bytes` so that a reader sees the old file or the whole
// new one, never a part: the bytes go to a temporary file in the same folder, which is then
// renamed over the target. False with a reason when the folder refuses; no temporary file
// is left behind then.
bool atomicWrite(const std::string& path, std::string_view bytes, std::string* reason = nullptr);

// The whole file; nothing (and a reason) when it can't be read.
bool readFileBytes(const std::string& path, std::string& bytes, std::string* reason = nullptr);

}  // namespace tb
