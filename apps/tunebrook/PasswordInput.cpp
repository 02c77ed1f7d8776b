#include "PasswordInput.h"

#include <iostream>

#include <termios.h>
#include <unistd.h>

namespace tb {

std::optional<std::string> PasswordInput::read(const std::optional<std::string>& option,
                                               bool fromStdin,
                                               std::string& error) {
    if (option) {
        return option;
    }
    if (fromStdin) {
        return lineOfStdin(error);
    }
    if (isatty(STDIN_FILENO) == 1) {
        return promptOnTerminal(error);
    }
    error = "give the password with --password, or on standard input with --password-stdin";
    return std::nullopt;
}

std::optional<std::string> PasswordInput::lineOfStdin(std::string& error) {
    std::string line;
    if (!std::getline(std::cin, line)) {
        error = "no password on standard input";
        return std::nullopt;
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

// The echo goes off for the one line and comes back even when the read fails.
std::optional<std::string> PasswordInput::promptOnTerminal(std::string& error) {
    std::cerr << "Password: " << std::flush;
    termios saved{};
    const bool canHide = tcgetattr(STDIN_FILENO, &saved) == 0;
    if (canHide) {
        termios hidden = saved;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    auto password = lineOfStdin(error);
    if (canHide) {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved);
    }
    std::cerr << std::endl;
    return password;
}

}  // namespace tb
