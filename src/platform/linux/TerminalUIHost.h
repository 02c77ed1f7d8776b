#pragma once

#include <iosfwd>

#include "platform/UIHost.h"

namespace tb {

// The presentation shell for a plain terminal: what the app shows is printed, one line per
// thing, for a person or a test to read.
//   [toast] ✓ text            (✓ success, ✗ failure, no mark without an image)
//   [alert] title             (when there is one)
//   [alert] message
//   [alert] buttons: OK | Delete (destructive) | Cancel (cancel)
//   [progress] text / [progress] hidden
//   [login] source N
// With no interactive shell to answer it, an alert is shown and left: no button runs.
class TerminalUIHost final : public UIHost {
  public:
    explicit TerminalUIHost(std::ostream& out);

    void showToast(const std::string& text, ToastImage image) override;
    void presentAlert(Alert alert) override;
    void showProgress(const std::string& text) override;
    void hideProgress() override;
    void showLoginScreenWithSource(int source) override;

  private:
    std::ostream& out_;
};

}  // namespace tb
