#pragma once

#include <string>
#include <vector>

namespace tb::test {

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
                     double timeoutSeconds = 60);
};

}  // namespace tb::test
