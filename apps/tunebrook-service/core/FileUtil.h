#pragma once

#include <optional>
#include <string>

namespace tb::service {

// Whole-file helpers. Writes go to a temporary name beside the target and are renamed into
// place, so a killed process never leaves half a file under the real name.
class FileUtil {
  public:
    static bool writeAtomically(const std::string& path, const std::string& content, int mode);
    static std::optional<std::string> read(const std::string& path);
    static bool exists(const std::string& path);
    static std::optional<long long> size(const std::string& path);
};

}  // namespace tb::service
