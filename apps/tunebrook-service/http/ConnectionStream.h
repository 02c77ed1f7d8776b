#pragma once

#include <chrono>
#include <string>

#include <httplib.h>

namespace tb::service {

// One connection's socket as the HTTP library reads and writes it. Unlike the library's own
// stream, it lives as long as the connection: bytes received past one request (a pipelined
// next request) stay for the next, reads end at a deadline for the whole head or body rather
// than per wait, and an answer is still written after the peer has closed its sending side.
class ConnectionStream : public httplib::Stream {
  public:
    using Clock = std::chrono::steady_clock;
    enum class Received { data, closed, late };

    ConnectionStream(int fd, Clock::duration writeWait);

    // Received bytes not read yet; the head reader looks at and rewrites them in place.
    std::string& pending();
    // Waits until `deadline` for more bytes and appends them to `pending`.
    Received receive(Clock::time_point deadline);
    // Reads from here on end at `deadline`.
    void setReadDeadline(Clock::time_point deadline) { readDeadline_ = deadline; }
    // Bytes handed to readers so far.
    uint64_t consumed() const { return consumed_; }
    // Writes all of `text`; false when the peer doesn't take it.
    bool writeAll(const std::string& text);
    // Reads and drops what the peer still sends, until it closes, `deadline` or `limit` bytes.
    void drain(Clock::time_point deadline, size_t limit);

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* ptr, size_t size) override;
    ssize_t write(const char* ptr, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    int socket() const override { return fd_; }

  private:
    const int fd_;
    const Clock::duration writeWait_;
    std::string pending_;
    size_t offset_ = 0;  // of the first unread byte in pending_
    uint64_t consumed_ = 0;
    Clock::time_point readDeadline_;
};

}  // namespace tb::service
