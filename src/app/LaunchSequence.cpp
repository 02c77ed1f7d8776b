#include "app/LaunchSequence.h"

#include <algorithm>

#include "platform/Fatal.h"

namespace tb {

void LaunchSequence::append(LaunchStep step) {
    requireNewName(step.name);
    steps_.push_back(std::move(step));
}

bool LaunchSequence::insertBefore(const std::string& anchor, LaunchStep step) {
    return insertNextTo(anchor, 0, std::move(step));
}

bool LaunchSequence::insertAfter(const std::string& anchor, LaunchStep step) {
    return insertNextTo(anchor, 1, std::move(step));
}

bool LaunchSequence::insertNextTo(const std::string& anchor, int offset, LaunchStep step) {
    requireNewName(step.name);
    const auto at = find(anchor);
    if (at == steps_.end()) {
        return false;
    }
    steps_.insert(at + offset, std::move(step));
    return true;
}

// Two steps of one name would make every lookup by name ambiguous.
void LaunchSequence::requireNewName(const std::string& name) {
    if (find(name) != steps_.end()) {
        TB_FATAL("Launch step added twice: " + name);
    }
}

bool LaunchSequence::remove(const std::string& name) {
    const auto at = find(name);
    if (at == steps_.end()) {
        return false;
    }
    steps_.erase(at);
    return true;
}

std::vector<std::string> LaunchSequence::names() const {
    std::vector<std::string> result;
    for (const auto& step : steps_) {
        result.push_back(step.name);
    }
    return result;
}

std::vector<LaunchRecord> LaunchSequence::run() const {
    std::vector<LaunchRecord> records;
    for (const auto& step : steps_) {
        records.push_back({step.name, step.run()});
    }
    return records;
}

std::vector<LaunchStep>::iterator LaunchSequence::find(const std::string& name) {
    return std::find_if(steps_.begin(), steps_.end(),
                        [&](const LaunchStep& step) { return step.name == name; });
}

}  // namespace tb
