#include "support/ChildProcess.h"

#include <chrono>
#include <fstream>
#include <sstream>
#include <utility>

#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tb::test {

namespace {

// Forks a child that runs `body` with the write end of a pipe and exits with its status.
// The parent gets the child's pid and the read end, or a pid of -1 when no pipe was had.
std::pair<pid_t, int> startChild(const std::function<int(int out)>& body) {
    int fds[2];
    if (pipe(fds) != 0) {
        return {-1, -1};
    }
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        _exit(body(fds[1]));
    }
    close(fds[1]);
    return {pid, fds[0]};
}

}  // namespace

ChildResult runInChild(const std::function<int(int out)>& body) {
    const auto [pid, out] = startChild(body);
    if (pid < 0) {
        return {};
    }
    ChildResult result;
    char buffer[256];
    ssize_t got;
    while ((got = read(out, buffer, sizeof buffer)) > 0) {
        result.output.append(buffer, static_cast<std::size_t>(got));
    }
    close(out);
    int status = 0;
    waitpid(pid, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

std::set<std::string> linesBeforeKill(const std::function<void(int out)>& body, int milliseconds) {
    const auto [pid, out] = startChild([&body](int fd) {
        body(fd);
        return 0;
    });
    if (pid < 0) {
        return {};
    }
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::string reported;
    char buffer[4096];
    for (auto now = Clock::now(); now < deadline; now = Clock::now()) {
        pollfd ready{out, POLLIN, 0};
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now);
        if (poll(&ready, 1, static_cast<int>(left.count())) > 0) {
            const ssize_t got = read(out, buffer, sizeof buffer);
            if (got <= 0) {
                break;
            }
            reported.append(buffer, static_cast<std::size_t>(got));
        }
    }
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    for (ssize_t got; (got = read(out, buffer, sizeof buffer)) > 0;) {
        reported.append(buffer, static_cast<std::size_t>(got));
    }
    close(out);
    std::set<std::string> lines;
    std::istringstream whole(reported.substr(0, reported.rfind('\n') + 1));
    for (std::string line; std::getline(whole, line);) {
        lines.insert(line);
    }
    return lines;
}

void writeToParent(int out, const std::string& text) {
    const ssize_t ignored = write(out, text.data(), text.size());
    (void)ignored;
}

bool enterPrivateMounts() {
    const uid_t uid = geteuid();
    const gid_t gid = getegid();
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << uid << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << gid << " 1";
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

}  // namespace tb::test
