#pragma once

#include <optional>
#include <string>

#include <sys/types.h>

#include "support/TempDir.h"

namespace tb::test {

// A D-Bus session of the test's own (dbus-run-session), optionally with a Secret Service
// (gnome-keyring-daemon, its login keyring unlocked with a password given on stdin), in a
// throw-away home folder. While it lives, DBUS_SESSION_BUS_ADDRESS points at it; the session
// and everything in it end with the object (or with the test process, whose pipe it reads).
class PrivateSessionBus {
  public:
    explicit PrivateSessionBus(bool withKeyring);
    ~PrivateSessionBus();
    PrivateSessionBus(const PrivateSessionBus&) = delete;
    PrivateSessionBus& operator=(const PrivateSessionBus&) = delete;

    // False when the programs are missing or the session did not come up; reason() says why.
    bool available() const { return !address_.empty(); }
    const std::string& reason() const { return reason_; }
    const std::string& address() const { return address_; }

    // Runs a shell command inside the session; true when it exits with 0.
    bool run(const std::string& command) const;

  private:
    void start(bool withKeyring);
    void stop();

    TempDir home_;
    pid_t session_ = -1;
    int keepAlive_ = -1;
    std::string address_;
    std::string reason_;
    std::optional<std::string> previousAddress_;
};

// True when `program` is an executable on PATH.
bool programExists(const std::string& program);

}  // namespace tb::test
