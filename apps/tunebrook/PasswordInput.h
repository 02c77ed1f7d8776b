#pragma once

#include <optional>
#include <string>

namespace tb {

// Where a command takes a password from: the option's value, one line of standard input
// ("--password-stdin", for scripts), or a prompt on the terminal with the echo turned off.
// The password never reaches the command line's output or its logs.
class PasswordInput {
  public:
    // The option's value when one was given, else a line of standard input when asked for
    // or when standard input is a terminal. Nothing, with `error` set, otherwise.
    static std::optional<std::string> read(const std::optional<std::string>& option,
                                           bool fromStdin,
                                           std::string& error);

  private:
    static std::optional<std::string> promptOnTerminal(std::string& error);
    static std::optional<std::string> lineOfStdin(std::string& error);
};

}  // namespace tb
