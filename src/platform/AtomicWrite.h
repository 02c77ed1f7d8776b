#pragma once

#include <string>
#include <string_view>

namespace tb {

// The FileSystem operations as free functions, for the callers that don't take a FileSystem
// yet; the platform implementation defines them (see FileSystem for what they promise).

bool atomicWrite(const std::string& path, std::string_view bytes, std::string* reason = nullptr);

bool readFileBytes(const std::string& path, std::string& bytes, std::string* reason = nullptr);

}  // namespace tb
