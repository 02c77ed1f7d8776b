#pragma once

#include <string>
#include <vector>

namespace tb::service {

// Runs outside tools (ffmpeg) without a shell: arguments go straight to exec, so no text in
// them is ever interpreted. Output is discarded; only the exit status counts.
class ProcessRunner {
  public:
    // Starts every command, at most `parallel` at a time, and waits for all of them.
    // Returns the indexes of the commands that failed.
    static std::vector<size_t> runAll(const std::vector<std::vector<std::string>>& commands,
                                      size_t parallel);
    static bool run(const std::vector<std::string>& command);
    // Ends the children of every runAll under way (and of any later one) and makes them count
    // as failed. Safe to call from any thread.
    static void interruptAll();
    // True when `program` is found on PATH.
    static bool available(const std::string& program);
};

}  // namespace tb::service
