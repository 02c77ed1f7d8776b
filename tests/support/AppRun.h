#pragma once

#include <string>
#include <vector>

namespace tb::test {

class TempDir;

// A signal sent to a run once its stdout holds `text` (for a program that runs until it is
// told to stop).
struct SignalOn {
    std::string text;
    int signal = 0;
};

// One run of a program to its end, with what it wrote to stdout and to stderr kept apart
// (so that a --json run's stdout can be parsed). A run that outlives `timeoutSeconds` is
// killed and reports status -1.
struct AppRun {
    int status = -1;
    std::string out;
    std::string err;
    double seconds = 0;

    static AppRun of(const std::string& binary,
                     const std::vector<std::string>& arguments,
                     double timeoutSeconds = 60,
                     const SignalOn& signalOn = {});
    // The same with `input` on the program's standard input.
    static AppRun withInput(const std::string& binary,
                            const std::vector<std::string>& arguments,
                            const std::string& input,
                            double timeoutSeconds = 60);

  private:
    static AppRun run(const std::string& binary,
                      const std::vector<std::string>& arguments,
                      double timeoutSeconds,
                      const SignalOn& signalOn,
                      const TempDir& dir,
                      const std::string& inPath);
};

}  // namespace tb::test
