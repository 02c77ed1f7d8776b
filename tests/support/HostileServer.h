#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

namespace httplib {
class Server;
}

namespace tb::test {

// A loopback HTTP server that answers every GET and POST the way a hostile service might.
class HostileServer {
  public:
    enum class Answer {
        // A 200 whose body never ends (it stops at 256 MiB, far past any limit).
        endlessBody,
        // A small gzip body, made as it is sent, that inflates to 1 GiB of zeros.
        gzipBomb,
        // A 200 with 4 MiB of headers and an empty body.
        endlessHeaders,
    };

    explicit HostileServer(Answer answer);
    ~HostileServer();
    HostileServer(const HostileServer&) = delete;
    HostileServer& operator=(const HostileServer&) = delete;

    // "http://127.0.0.1:PORT" + path.
    std::string url(const std::string& path) const;

  private:
    std::unique_ptr<httplib::Server> server_;
    int port_ = 0;
    std::thread thread_;
};

// The peak resident memory of this process so far, and of its largest waited-for child, in
// bytes.
std::int64_t peakResidentBytes();
std::int64_t peakChildResidentBytes();

}  // namespace tb::test
