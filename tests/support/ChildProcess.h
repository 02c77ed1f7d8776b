#pragma once

#include <functional>
#include <set>
#include <string>

namespace tb::test {

// What a child process wrote back, and how it ended: its exit status, or -1 when it was
// killed or could not be started.
struct ChildResult {
    int status = -1;
    std::string output;
};

// The exit status of a child that can't set itself up (no namespace, no privileges).
inline constexpr int kSkipChild = 77;

// Runs `body` in a forked child; what it writes to `out` comes back as text, and its result
// is the exit status.
ChildResult runInChild(const std::function<int(int out)>& body);

// Runs `body` in a forked child and kills it after `milliseconds`; gives the whole lines it
// wrote to `out` by then (a line the kill cut short is no report).
std::set<std::string> linesBeforeKill(const std::function<void(int out)>& body, int milliseconds);

// Writes `text` to the parent's pipe.
void writeToParent(int out, const std::string& text);

// Gives the calling process a mount namespace of its own (a user namespace too when it is
// not privileged), so that it may mount a small tmpfs. False when the system refuses.
bool enterPrivateMounts();

}  // namespace tb::test
