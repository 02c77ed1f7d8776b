// The tunebrook command line: launches the app's core on this machine, tells what the
// launch did, and runs one of the registered commands (see Command.h).

#include <atomic>
#include <csignal>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "AppSession.h"
#include "Command.h"
#include "SignalWatcher.h"
#include "StopRequest.h"
#include "platform/RunLoop.h"

namespace {

const char* signalName(int signal) {
    return signal == SIGINT ? "SIGINT" : signal == SIGTERM ? "SIGTERM" : "a signal";
}

}  // namespace

int main(int argc, char** argv) {
    tb::StopRequest stop;
    std::atomic<int> stopSignal = 0;
    // First, before any thread exists, so that every thread inherits the blocked signals.
    tb::SignalWatcher signals([&](int signal) {
        stopSignal = signal;
        stop.request();
    });

    CLI::App cli{"Tunebrook: the client of the Tunebrook music service.", "tunebrook"};
    tb::SessionOptions options;
    bool stay = false;
    cli.add_option("--home", options.home, "Keep every file of the app under DIR")
        ->type_name("DIR")
        ->check(CLI::Validator(
            [](std::string& value) {
                // Empty is no folder at all: the default folders would be used silently.
                return value.empty() ? "needs a folder; leave --home out for the default folders"
                                     : std::string();
            },
            "DIR"));
    cli.add_option("--keys", options.keysFile,
                   "The keys file (default: keys.json in the config folder)")
        ->type_name("FILE");
    cli.add_flag("--stay", stay, "Keep running until SIGINT or SIGTERM");
    cli.add_flag("--json", options.json,
                 "Commands print the records as JSON; the launch's lines go to stderr");
    cli.set_version_flag("--version", std::string("tunebrook ") + TB_VERSION);
    cli.require_subcommand(0, 1);
    cli.fallthrough();

    auto commands = tb::CommandRegistry::makeAll();
    std::vector<std::pair<CLI::App*, tb::Command*>> subcommands;
    for (auto& command : commands) {
        CLI::App* sub = cli.add_subcommand(command->name(), command->description());
        command->configure(*sub);
        subcommands.emplace_back(sub, command.get());
    }

    try {
        cli.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return cli.exit(error);
    }

    tb::AppSession session(options);
    if (const auto error = session.launch(options.json ? std::cerr : std::cout)) {
        std::cerr << "tunebrook: " << error->message << '\n';
        return 1;
    }
    stop.attach(session.runLoop());

    int status = 0;
    for (const auto& [sub, command] : subcommands) {
        if (sub->parsed()) {
            status = command->run(session);
        }
    }
    if (stay && status == 0 && !stop.requested()) {
        std::cout << "tunebrook: running until SIGINT or SIGTERM" << std::endl;
        session.runLoop().run();
    }
    stop.detach();
    if (stop.requested()) {
        std::cout << "tunebrook: stopped by " << signalName(stopSignal.load()) << std::endl;
    }
    return status;
}
