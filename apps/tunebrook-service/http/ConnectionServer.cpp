#include "tunebrook-service/http/ConnectionServer.h"

#include <algorithm>

#include <sys/socket.h>
#include <unistd.h>

#include "tunebrook-service/http/ConnectionStream.h"
#include "tunebrook-service/http/ConnectionThreads.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/http/RequestHead.h"

namespace tb::service {

namespace {

using Clock = ConnectionStream::Clock;

// How long, and how much, a closing connection still reads for its peer to close first.
constexpr auto kLinger = std::chrono::seconds(1);
constexpr size_t kLingerBytes = 1024 * 1024;

Clock::duration seconds(double count) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(count));
}

const char* reasonFor(int status) {
    switch (status) {
        case 408:
            return "Request Timeout";
        case 411:
            return "Length Required";
        case 413:
            return "Payload Too Large";
        case 414:
            return "URI Too Long";
        case 431:
            return "Request Header Fields Too Large";
        default:
            return "Bad Request";
    }
}

// Gives handlers the client's Range header back under its own name (see RequestHead).
void restoreRange(httplib::Request& request) {
    auto hidden = request.headers.find(RequestHead::kRangeHeader);
    if (hidden != request.headers.end()) {
        std::string value = hidden->second;
        request.headers.erase(hidden);
        request.headers.emplace("Range", value);
    }
}

}  // namespace

ConnectionServer::ConnectionServer(ConnectionLimits limits) : limits_(limits) {
    new_task_queue = [count = limits.maxConnections] { return new ConnectionThreads(count); };
    set_payload_max_length(limits.maxBody);
}

void ConnectionServer::deepenBacklog() {
    ::listen(svr_sock_, SOMAXCONN);
}

void ConnectionServer::shutDown() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
        for (int sock : open_) {
            ::shutdown(sock, SHUT_RDWR);
        }
    }
    stop();
}

bool ConnectionServer::process_and_close_socket(int sock) {
    if (enter(sock)) {
        ConnectionStream stream(sock, seconds(limits_.writeSeconds));
        serve(stream);
        // The answer just written arrives before the end: a close with unread bytes waiting
        // would reset the connection and could discard it.
        ::shutdown(sock, SHUT_WR);
        stream.drain(Clock::now() + kLinger, kLingerBytes);
        leave(sock);
    }
    ::close(sock);
    return true;
}

void ConnectionServer::serve(ConnectionStream& stream) {
    for (size_t left = keep_alive_max_count_; left > 0 && !stopping(); --left) {
        RequestHead head = readHead(stream);
        if (head.state == RequestHead::State::refused) {
            refuse(stream, head.status);
            return;
        }
        if (head.state != RequestHead::State::ready) {
            return;
        }
        uint64_t bodyEnd = stream.consumed() + head.length + head.bodyLength;
        stream.setReadDeadline(Clock::now() + seconds(limits_.bodySeconds));
        // How much of a chunked body a handler read can't be told, so nothing may follow it.
        bool last = left == 1 || head.chunked;
        bool closed = false;
        if (!process_request(stream, last, closed, restoreRange) || closed || last ||
            !skipTo(stream, bodyEnd)) {
            return;
        }
    }
}

RequestHead ConnectionServer::readHead(ConnectionStream& stream) {
    std::string& bytes = stream.pending();
    if (bytes.empty() && stream.receive(Clock::now() + seconds(limits_.idleSeconds)) !=
                             ConnectionStream::Received::data) {
        return {};
    }
    const auto deadline = Clock::now() + seconds(limits_.headSeconds);
    for (;;) {
        RequestHead head = RequestHead::examine(bytes, limits_);
        if (head.state != RequestHead::State::incomplete) {
            return head;
        }
        auto received = stream.receive(deadline);
        if (received == ConnectionStream::Received::late) {
            head.state = RequestHead::State::refused;
            head.status = 408;
            return head;
        }
        if (received == ConnectionStream::Received::closed) {
            return head;
        }
    }
}

void ConnectionServer::refuse(ConnectionStream& stream, int status) {
    httplib::Response response;
    Reply::error(response, status, kBadRequest, reasonFor(status));
    stream.writeAll("HTTP/1.1 " + std::to_string(status) + " " + reasonFor(status) +
                    "\r\nContent-Type: application/json\r\nContent-Length: " +
                    std::to_string(response.body.size()) + "\r\nConnection: close\r\n\r\n" +
                    response.body);
}

bool ConnectionServer::skipTo(ConnectionStream& stream, uint64_t end) {
    char buffer[16 * 1024];
    while (stream.consumed() < end) {
        auto wanted = std::min<uint64_t>(sizeof buffer, end - stream.consumed());
        if (stream.read(buffer, static_cast<size_t>(wanted)) <= 0) {
            return false;
        }
    }
    return true;
}

bool ConnectionServer::enter(int sock) {
    std::lock_guard lock(mutex_);
    if (stopping_) {
        return false;
    }
    open_.insert(sock);
    return true;
}

void ConnectionServer::leave(int sock) {
    std::lock_guard lock(mutex_);
    open_.erase(sock);
}

bool ConnectionServer::stopping() const {
    std::lock_guard lock(mutex_);
    return stopping_;
}

}  // namespace tb::service
