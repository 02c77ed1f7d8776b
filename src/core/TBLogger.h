#pragma once

#include <map>
#include <string>
#include <vector>

namespace tb {

// The in-app log: texts kept in memory by tag, for the log viewer of the settings screen.
// Nothing is limited and nothing reaches the disk; the log lives as long as the process.
// Tracked analytics events are logged under "Mixpanel".
class TBLogger {
  public:
    using Log = std::map<std::string, std::vector<std::string>>;

    TBLogger() = default;

    static TBLogger& sharedInstance();

    // The console log: the line goes to the developer console, and the in-app log keeps
    // nothing of it.
    void log(const std::string& text);

    // Appends `text` to the texts of `tag`.
    void inMemoryLog(const std::string& text, const std::string& tag);

    const Log& inMemoryLog() const { return inMemoryLog_; }

  private:
    Log inMemoryLog_;
};

}  // namespace tb
