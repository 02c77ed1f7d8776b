#include <algorithm>

#include "Command.h"

namespace tb {

namespace {

// The table is filled by the commands' registrations during static initialisation, which
// may come before any other static of this file is made; a function's own static is made at
// first use and so is always ready. It is a table of the program, not an app singleton.
std::vector<CommandRegistry::Factory>& factories() {
    static std::vector<CommandRegistry::Factory> table;
    return table;
}

}  // namespace

void CommandRegistry::add(Factory factory) {
    factories().push_back(std::move(factory));
}

std::vector<std::unique_ptr<Command>> CommandRegistry::makeAll() {
    std::vector<std::unique_ptr<Command>> commands;
    for (const auto& factory : factories()) {
        commands.push_back(factory());
    }
    std::sort(commands.begin(), commands.end(),
              [](const auto& a, const auto& b) { return a->name() < b->name(); });
    return commands;
}

}  // namespace tb
