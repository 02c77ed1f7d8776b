#include <sstream>

#include "platform/linux/TerminalUIHost.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(TerminalUIHostTest, PrintsToastsProgressAndTheLoginScreenOneLineEach) {
    std::ostringstream out;
    TerminalUIHost host(out);
    host.showToast("Reposted", UIHost::ToastImage::Success);
    host.showToast("No connection", UIHost::ToastImage::Failure);
    host.showToast("Plain", UIHost::ToastImage::None);
    host.showProgress("Loading");
    host.hideProgress();
    host.showLoginScreenWithSource(7);

    EXPECT_EQ(out.str(),
              "[toast] \u2713 Reposted\n"
              "[toast] \u2717 No connection\n"
              "[toast] Plain\n"
              "[progress] Loading\n"
              "[progress] hidden\n"
              "[login] source 7\n");
}

TEST(TerminalUIHostTest, ShowsAlertsWithTheirButtonsAndRunsNone) {
    std::ostringstream out;
    TerminalUIHost host(out);
    bool pressed = false;
    host.presentAlert(Alert{"Delete playlist?",
                            "This can't be undone.",
                            {{"Delete", AlertAction::Style::Destructive, [&] { pressed = true; }},
                             {"Cancel", AlertAction::Style::Cancel, [&] { pressed = true; }}}});
    host.presentAlert(Alert{std::nullopt, "Offline", {{"OK", AlertAction::Style::Default, {}}}});

    EXPECT_EQ(out.str(),
              "[alert] Delete playlist?\n"
              "[alert] This can't be undone.\n"
              "[alert] buttons: Delete (destructive) | Cancel (cancel)\n"
              "[alert] Offline\n"
              "[alert] buttons: OK\n");
    EXPECT_FALSE(pressed);
}

}  // namespace
}  // namespace tb
