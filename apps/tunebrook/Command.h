#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tb {

class AppSession;

// One subcommand of the tunebrook command line ("trending", "chart", "song"). Each lives in
// its own file and registers itself there with TB_REGISTER_COMMAND, so adding a command
// touches no shared list:
//
//     class TrendingCommand final : public Command { ... };
//     TB_REGISTER_COMMAND(TrendingCommand)
//
// The command line makes one instance of each, lets it declare its arguments on its own
// subcommand (which may have subcommands of its own, as "chart songs" does), and when the
// listener picked it, runs it after the app has launched.
class Command {
  public:
    virtual ~Command() = default;

    virtual std::string name() const = 0;
    virtual std::string description() const = 0;

    // Declares arguments and options on the command's subcommand.
    virtual void configure(CLI::App& command) = 0;

    // Runs on the main thread after the launch. Asynchronous work waits with
    // session.runUntil(...). Returns the process's exit status.
    virtual int run(AppSession& session) = 0;
};

// The commands of this program, gathered from their registrations before main runs.
class CommandRegistry {
  public:
    using Factory = std::function<std::unique_ptr<Command>()>;

    static void add(Factory factory);

    // One new instance of every registered command, sorted by name.
    static std::vector<std::unique_ptr<Command>> makeAll();
};

struct CommandRegistration {
    explicit CommandRegistration(CommandRegistry::Factory factory) {
        CommandRegistry::add(std::move(factory));
    }
};

}  // namespace tb

#define TB_REGISTER_COMMAND(Type)                                                                \
    namespace {                                                                                  \
    const ::tb::CommandRegistration registration##Type{[] { return std::make_unique<Type>(); }}; \
    }
