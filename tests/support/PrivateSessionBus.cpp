#include "support/PrivateSessionBus.h"

#include <chrono>
#include <cstdlib>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/FileContents.h"

namespace tb::test {

namespace {

// $1 = home folder, $2 = keyring password (empty: no keyring). The session stays up until
// the parent closes the pipe on stdin.
constexpr const char* kSessionScript = R"(
export HOME="$1" XDG_DATA_HOME="$1/data" XDG_CONFIG_HOME="$1/config" XDG_RUNTIME_DIR="$1/run"
mkdir -p "$XDG_DATA_HOME" "$XDG_CONFIG_HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
if [ -n "$2" ]; then
  printf %s "$2" | gnome-keyring-daemon --unlock --components=secrets >/dev/null || exit 1
  # The daemon returns before it is on the bus. Wait for it without asking for the
  # service by name, which would have the bus start a second, locked daemon.
  owned() {
    gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
      --method org.freedesktop.DBus.NameHasOwner org.freedesktop.secrets 2>/dev/null | grep -q true
  }
  collection() {
    gdbus call --session --dest org.freedesktop.secrets \
      --object-path /org/freedesktop/secrets/aliases/default \
      --method org.freedesktop.DBus.Properties.Get org.freedesktop.Secret.Collection Locked \
      >/dev/null 2>&1
  }
  tries=0
  until owned && collection; do
    tries=$((tries + 1)); [ $tries -gt 200 ] && exit 1; sleep 0.05
  done
fi
printf '%s\n' "$DBUS_SESSION_BUS_ADDRESS" > "$1/address.tmp" && mv "$1/address.tmp" "$1/address"
cat >/dev/null
)";

constexpr auto kStartTimeout = std::chrono::seconds(15);
constexpr auto kStopTimeout = std::chrono::seconds(5);

}  // namespace

bool programExists(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::stringstream folders(path ? path : "/usr/bin:/bin");
    std::string folder;
    while (std::getline(folders, folder, ':')) {
        if (!folder.empty() && ::access((folder + "/" + program).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

PrivateSessionBus::PrivateSessionBus(bool withKeyring) {
    if (const char* previous = std::getenv("DBUS_SESSION_BUS_ADDRESS")) {
        previousAddress_ = previous;
    }
    for (const char* program :
         {"dbus-run-session", "dbus-daemon", "gnome-keyring-daemon", "gdbus"}) {
        const bool needed = withKeyring || std::string(program) == "dbus-run-session" ||
                            std::string(program) == "dbus-daemon";
        if (needed && !programExists(program)) {
            reason_ = std::string(program) + " is not installed";
            return;
        }
    }
    start(withKeyring);
}

PrivateSessionBus::~PrivateSessionBus() {
    stop();
    if (previousAddress_) {
        ::setenv("DBUS_SESSION_BUS_ADDRESS", previousAddress_->c_str(), 1);
    } else {
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }
}

void PrivateSessionBus::start(bool withKeyring) {
    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0) {
        reason_ = "pipe failed";
        return;
    }
    const std::string log = home_.file("session.log");
    const std::string password = withKeyring ? "tunebrook-test" : "";
    session_ = ::fork();
    if (session_ == 0) {
        ::setpgid(0, 0);
        ::dup2(pipeFds[0], STDIN_FILENO);
        const int out = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(out, STDOUT_FILENO);
        ::dup2(out, STDERR_FILENO);
        ::execlp("dbus-run-session", "dbus-run-session", "--", "sh", "-c", kSessionScript, "sh",
                 home_.path().c_str(), password.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(pipeFds[0]);
    keepAlive_ = pipeFds[1];
    if (session_ < 0) {
        reason_ = "fork failed";
        return;
    }
    const auto deadline = std::chrono::steady_clock::now() + kStartTimeout;
    while (std::chrono::steady_clock::now() < deadline) {
        std::string address = readFileText(home_.file("address"));
        if (!address.empty()) {
            address_ = address.substr(0, address.find('\n'));
            ::setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1);
            return;
        }
        int status = 0;
        if (::waitpid(session_, &status, WNOHANG) == session_) {
            session_ = -1;
            reason_ = "the session ended at once: " + readFileText(log);
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    reason_ = "the session did not come up: " + readFileText(log);
}

void PrivateSessionBus::stop() {
    if (keepAlive_ >= 0) {
        ::close(keepAlive_);
        keepAlive_ = -1;
    }
    if (session_ <= 0) {
        return;
    }
    const auto deadline = std::chrono::steady_clock::now() + kStopTimeout;
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        if (::waitpid(session_, &status, WNOHANG) == session_) {
            session_ = -1;
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    // Only the session's own process group, which this object started.
    ::kill(-session_, SIGKILL);
    ::waitpid(session_, nullptr, 0);
    session_ = -1;
}

bool PrivateSessionBus::run(const std::string& command) const {
    if (!available()) {
        return false;
    }
    const std::string line =
        "DBUS_SESSION_BUS_ADDRESS='" + address_ + "' " + command + " >/dev/null 2>&1";
    return std::system(line.c_str()) == 0;
}

}  // namespace tb::test
