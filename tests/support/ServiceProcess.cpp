#include "support/ServiceProcess.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace tb::test {

namespace {

constexpr int kStartSeconds = 180;

// One line from the pipe, waiting at most until the deadline.
std::string readLine(int fd, std::chrono::steady_clock::time_point deadline) {
    std::string line;
    while (std::chrono::steady_clock::now() < deadline) {
        pollfd probe{fd, POLLIN, 0};
        if (poll(&probe, 1, 100) <= 0) {
            continue;
        }
        char c;
        ssize_t n = read(fd, &c, 1);
        if (n <= 0) {
            break;
        }
        if (c == '\n') {
            return line;
        }
        line.push_back(c);
    }
    return {};
}

}  // namespace

std::string ServiceProcess::mediaCacheFor(const std::string& binary) {
    return std::filesystem::path(binary).parent_path().string() + "/media-cache";
}

ServiceProcess::ServiceProcess(std::string binary,
                               std::string dataDir,
                               std::vector<std::string> args)
    : binary_(std::move(binary)), dataDir_(std::move(dataDir)) {
    std::filesystem::create_directories(dataDir_);
    std::vector<std::string> command = {binary_, "--data", dataDir_, "--port", "0"};
    command.insert(command.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& arg : command) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);

    int pipeFds[2];
    if (pipe2(pipeFds, O_CLOEXEC) != 0) {
        error_ = "no pipe";
        return;
    }
    std::string log = dataDir_ + "/stderr.log";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, log.c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0644);
    int rc = posix_spawn(&pid_, binary_.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    output_ = pipeFds[0];
    if (rc != 0) {
        pid_ = -1;
        error_ = "cannot start " + binary_;
        return;
    }
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(kStartSeconds);
    std::string line = readLine(output_, deadline);
    const std::string prefix = "http://";
    if (line.compare(0, prefix.size(), prefix) != 0) {
        error_ = "no address printed; see " + log;
        return;
    }
    size_t colon = line.find(':', prefix.size());
    size_t slash = line.find('/', prefix.size());
    host_ = line.substr(prefix.size(), colon - prefix.size());
    port_ = std::stoi(line.substr(colon + 1, slash - colon - 1));
    std::ifstream keysFile(dataDir_ + "/keys.json");
    auto keys = nlohmann::json::parse(keysFile, nullptr, false);
    if (!keys.is_object()) {
        error_ = "no keys.json";
        return;
    }
    consumerKey_ = keys.value("tunebrookConsumerKey", "");
    consumerSecret_ = keys.value("tunebrookConsumerSecret", "");
    baseUrl_ = line;
}

ServiceProcess::~ServiceProcess() {
    if (pid_ > 0) {
        if (terminate() < 0) {
            kill9();
        }
    }
    if (output_ >= 0) {
        close(output_);
    }
}

void ServiceProcess::kill9() {
    if (pid_ <= 0) {
        return;
    }
    kill(pid_, SIGKILL);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
}

int ServiceProcess::terminate(int waitSeconds) {
    if (pid_ <= 0) {
        return -1;
    }
    kill(pid_, SIGTERM);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(waitSeconds);
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return -1;
}

}  // namespace tb::test
