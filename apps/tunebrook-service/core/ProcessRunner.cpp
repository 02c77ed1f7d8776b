#include "tunebrook-service/core/ProcessRunner.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <map>
#include <sstream>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace tb::service {

namespace {

std::atomic<bool> interrupted{false};

pid_t spawn(const std::vector<std::string>& command) {
    if (command.empty()) {
        return -1;
    }
    std::vector<char*> argv;
    argv.reserve(command.size() + 1);
    for (const auto& arg : command) {
        argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    // The service blocks its stop signals in every thread; a child must not inherit that, or
    // it could not be stopped.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    sigset_t stops;
    sigemptyset(&stops);
    sigaddset(&stops, SIGINT);
    sigaddset(&stops, SIGTERM);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &stops);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    pid_t pid = -1;
    int rc = posix_spawnp(&pid, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return rc == 0 ? pid : -1;
}

bool succeeded(int status) {
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

std::vector<size_t> ProcessRunner::runAll(const std::vector<std::vector<std::string>>& commands,
                                          size_t parallel) {
    std::vector<size_t> failed;
    std::map<pid_t, size_t> running;
    size_t next = 0;
    if (parallel == 0) {
        parallel = 1;
    }
    while (next < commands.size() || !running.empty()) {
        if (interrupted) {
            for (const auto& [pid, index] : running) {
                kill(pid, SIGTERM);
            }
            for (; next < commands.size(); ++next) {
                failed.push_back(next);
            }
        }
        while (next < commands.size() && running.size() < parallel) {
            pid_t pid = spawn(commands[next]);
            if (pid < 0) {
                failed.push_back(next);
            } else {
                running[pid] = next;
            }
            ++next;
        }
        if (running.empty()) {
            continue;
        }
        // Wait only for our own children: other parts of the process may have theirs.
        bool reaped = false;
        for (auto it = running.begin(); it != running.end();) {
            int status = 0;
            pid_t done = waitpid(it->first, &status, WNOHANG);
            if (done == 0) {
                ++it;
                continue;
            }
            if (done < 0 || !succeeded(status)) {
                failed.push_back(it->second);
            }
            it = running.erase(it);
            reaped = true;
        }
        if (!reaped) {
            usleep(10000);
        }
    }
    return failed;
}

void ProcessRunner::interruptAll() {
    interrupted = true;
}

bool ProcessRunner::run(const std::vector<std::string>& command) {
    return runAll({command}, 1).empty();
}

bool ProcessRunner::available(const std::string& program) {
    const char* path = std::getenv("PATH");
    if (!path) {
        return false;
    }
    std::stringstream dirs(path);
    std::string dir;
    while (std::getline(dirs, dir, ':')) {
        if (!dir.empty() && access((dir + "/" + program).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace tb::service
