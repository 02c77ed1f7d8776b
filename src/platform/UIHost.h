#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tb {

struct AlertAction {
    enum class Style { Default, Cancel, Destructive };
    std::string title;
    Style style = Style::Default;
    std::function<void()> handler;  // may be empty
};

struct Alert {
    std::optional<std::string> title;
    std::string message;
    std::vector<AlertAction> actions;
};

// What the presentation shell offers the app's logic: toasts, alerts, the progress HUD, the
// login screen.
// The terminal shell is the Linux host; tests use a recorder. Texts arrive localised.
class UIHost {
  public:
    enum class ToastImage { None, Success, Failure };  // "toast_success", "toast_failure"

    virtual ~UIHost() = default;

    virtual void showToast(const std::string& text, ToastImage image) = 0;

    // Presents the alert on top of whatever is shown. A button press runs its handler on
    // the main queue.
    virtual void presentAlert(Alert alert) = 0;

    virtual void showProgress(const std::string& text) = 0;
    virtual void hideProgress() = 0;

    // Opens the login screen on top of the current screen; `source` says what led there
    // (7: the session was lost).
    virtual void showLoginScreenWithSource(int source) = 0;
};

}  // namespace tb
