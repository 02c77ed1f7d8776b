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
    // Opens the regular file `path` for reading when it lies inside `folder` without a link
    // on the way (a link in the folder could lead anywhere); -1 otherwise.
    static int openInside(const std::string& folder, const std::string& path);
};

}  // namespace tb::service
