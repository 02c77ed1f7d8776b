#include "support/AppRun.h"

#include <chrono>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/FileContents.h"
#include "support/TempDir.h"

extern char** environ;

namespace tb::test {

AppRun AppRun::of(const std::string& binary,
                  const std::vector<std::string>& arguments,
                  double timeoutSeconds,
                  const SignalOn& signalOn) {
    TempDir dir;
    return run(binary, arguments, timeoutSeconds, signalOn, dir, "/dev/null");
}

AppRun AppRun::withInput(const std::string& binary,
                         const std::vector<std::string>& arguments,
                         const std::string& input,
                         double timeoutSeconds) {
    TempDir dir;
    const std::string inPath = dir.file("stdin");
    writeFileText(inPath, input);
    return run(binary, arguments, timeoutSeconds, {}, dir, inPath);
}

AppRun AppRun::run(const std::string& binary,
                   const std::vector<std::string>& arguments,
                   double timeoutSeconds,
                   const SignalOn& signalOn,
                   const TempDir& dir,
                   const std::string& inPath) {
    const std::string outPath = dir.file("stdout");
    const std::string errPath = dir.file("stderr");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, inPath.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<std::string> all = {binary};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& argument : all) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    AppRun run;
    const auto started = std::chrono::steady_clock::now();
    pid_t pid = -1;
    const int spawned = posix_spawn(&pid, binary.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        run.err = "could not start " + binary;
        return run;
    }
    const auto deadline = started + std::chrono::duration<double>(timeoutSeconds);
    int status = 0;
    bool signalled = signalOn.signal == 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (!signalled && readFileText(outPath).find(signalOn.text) != std::string::npos) {
            kill(pid, signalOn.signal);
            signalled = true;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            status = -1;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    run.status = status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = readFileText(outPath);
    run.err = readFileText(errPath);
    return run;
}

}  // namespace tb::test
