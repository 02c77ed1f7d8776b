#pragma once

#include <functional>
#include <string_view>

namespace tb {

// The developer console log (what the app prints for its developers: "BOOKMARKS - Saved
// song ...", ">>> Nothing to sync"). Not the in-app log of TBLogger. Lines go to stderr
// unless a sink is installed; tests install one to read what was logged.
void logLine(std::string_view text);

using LogSink = std::function<void(std::string_view line)>;

// Installs a sink for this process and returns the previous one (empty: stderr).
LogSink setLogSink(LogSink sink);

}  // namespace tb
