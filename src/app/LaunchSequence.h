#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tb {

// One step of the launch: a name, and the work, which answers with what it did in a few
// words ("Bugsnag", "skipped", "live").
struct LaunchStep {
    std::string name;
    std::function<std::string()> run;
};

// What a step did, in the order the steps ran.
struct LaunchRecord {
    std::string name;
    std::string outcome;

    bool operator==(const LaunchRecord&) const = default;
};

// The ordered steps of the launch. The order is the contract: a piece that joins the launch
// is placed before or after the step it must follow, by name.
class LaunchSequence {
  public:
    void append(LaunchStep step);

    // Place `step` next to the step named `anchor`; false (and nothing changes) when there
    // is no such step.
    bool insertBefore(const std::string& anchor, LaunchStep step);
    bool insertAfter(const std::string& anchor, LaunchStep step);

    // Removes the step of that name; false when there is none.
    bool remove(const std::string& name);

    std::vector<std::string> names() const;

    // Runs every step in order, synchronously, and tells what each did.
    std::vector<LaunchRecord> run() const;

  private:
    bool insertNextTo(const std::string& anchor, int offset, LaunchStep step);
    void requireNewName(const std::string& name);
    std::vector<LaunchStep>::iterator find(const std::string& name);

    std::vector<LaunchStep> steps_;
};

}  // namespace tb
