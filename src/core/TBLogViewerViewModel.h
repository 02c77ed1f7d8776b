#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tb {

class TBLogger;

// What the log viewer shows: the analytics log, newest entry first. A load and a pull to
// refresh read the log again; the screen draws one row per text of data().
class TBLogViewerViewModel {
  public:
    static constexpr const char* kTag = "Mixpanel";

    explicit TBLogViewerViewModel(const TBLogger& logger);

    // Reads the log into data() and asks the screen to reload.
    void load();

    // The same as load(); then the refresh control is told to end.
    void refresh();

    const std::vector<std::string>& data() const { return data_; }

    // Run after each read (reload the table) and at the end of a refresh.
    std::function<void()> onReload;
    std::function<void()> onEndRefreshing;

  private:
    const TBLogger& logger_;
    std::vector<std::string> data_;
};

}  // namespace tb
