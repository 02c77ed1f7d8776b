#include "support/ChildProcess.h"

#include <fstream>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tb::test {

ChildResult runInChild(const std::function<int(int out)>& body) {
    int fds[2];
    if (pipe(fds) != 0) {
        return {};
    }
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        _exit(body(fds[1]));
    }
    close(fds[1]);
    ChildResult result;
    char buffer[256];
    ssize_t got;
    while ((got = read(fds[0], buffer, sizeof buffer)) > 0) {
        result.output.append(buffer, static_cast<std::size_t>(got));
    }
    close(fds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
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
