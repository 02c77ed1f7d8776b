#include "platform/linux/TerminalUIHost.h"

#include <ostream>

namespace tb {

namespace {

const char* markOf(UIHost::ToastImage image) {
    switch (image) {
        case UIHost::ToastImage::Success:
            return "\u2713 ";
        case UIHost::ToastImage::Failure:
            return "\u2717 ";
        case UIHost::ToastImage::None:
            break;
    }
    return "";
}

const char* styleOf(AlertAction::Style style) {
    switch (style) {
        case AlertAction::Style::Cancel:
            return " (cancel)";
        case AlertAction::Style::Destructive:
            return " (destructive)";
        case AlertAction::Style::Default:
            break;
    }
    return "";
}

}  // namespace

TerminalUIHost::TerminalUIHost(std::ostream& out) : out_(out) {}

void TerminalUIHost::showToast(const std::string& text, ToastImage image) {
    out_ << "[toast] " << markOf(image) << text << std::endl;
}

void TerminalUIHost::presentAlert(Alert alert) {
    if (alert.title) {
        out_ << "[alert] " << *alert.title << '\n';
    }
    out_ << "[alert] " << alert.message << '\n';
    out_ << "[alert] buttons:";
    const char* separator = " ";
    for (const auto& action : alert.actions) {
        out_ << separator << action.title << styleOf(action.style);
        separator = " | ";
    }
    out_ << std::endl;
}

void TerminalUIHost::showProgress(const std::string& text) {
    out_ << "[progress] " << text << std::endl;
}

void TerminalUIHost::hideProgress() {
    out_ << "[progress] hidden" << std::endl;
}

void TerminalUIHost::showLoginScreenWithSource(int source) {
    out_ << "[login] source " << source << std::endl;
}

}  // namespace tb
