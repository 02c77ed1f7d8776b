#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace tb::test {

// Runs tunebrook-service as a child process on a free loopback port for a test: waits for
// the first line it prints (its API base) and reads the keys it wrote. Stops it with SIGTERM
// when destroyed. Its standard error goes to DATA/stderr.log.
class ServiceProcess {
  public:
    ServiceProcess(std::string binary, std::string dataDir, std::vector<std::string> args = {});
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    // False when the process didn't print its address in time; `error` then says why.
    bool started() const { return !baseUrl_.empty(); }
    const std::string& error() const { return error_; }
    const std::string& baseUrl() const { return baseUrl_; }  // "http://127.0.0.1:N/v1/"
    const std::string& host() const { return host_; }        // "127.0.0.1"
    int port() const { return port_; }
    const std::string& consumerKey() const { return consumerKey_; }
    const std::string& consumerSecret() const { return consumerSecret_; }
    pid_t pid() const { return pid_; }

    // SIGKILL, as a crash would end it.
    void kill9();
    // SIGTERM and the exit status, or -1 if it didn't end within the wait.
    int terminate(int waitSeconds = 20);

    // A folder beside the binary where made media is shared between test runs.
    static std::string mediaCacheFor(const std::string& binary);

  private:
    std::string binary_;
    std::string dataDir_;
    std::string error_;
    std::string baseUrl_;
    std::string host_;
    int port_ = 0;
    std::string consumerKey_;
    std::string consumerSecret_;
    pid_t pid_ = -1;
    int output_ = -1;
};

}  // namespace tb::test
