#include "platform/linux/XdgPaths.h"

#include <cstdlib>
#include <string>

namespace tb {

namespace {

std::string baseFolder(const char* variable, const char* fallbackUnderHome) {
    const char* value = std::getenv(variable);
    // XDG says relative values are invalid and must be ignored.
    if (value && value[0] == '/') {
        return value;
    }
    const char* home = std::getenv("HOME");
    std::string root = (home && home[0] == '/') ? home : "/tmp";
    return root + "/" + fallbackUnderHome;
}

}  // namespace

Paths xdgPaths() {
    return Paths{baseFolder("XDG_DATA_HOME", ".local/share") + "/tunebrook",
                 baseFolder("XDG_CACHE_HOME", ".cache") + "/tunebrook",
                 baseFolder("XDG_CONFIG_HOME", ".config") + "/tunebrook",
                 baseFolder("XDG_STATE_HOME", ".local/state") + "/tunebrook"};
}

}  // namespace tb
