#include <chrono>
#include <memory>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "service/ServiceFixture.h"
#include "tunebrook-service/Service.h"

namespace tb::test {
namespace {

using Clock = std::chrono::steady_clock;

// A plain TCP connection to the service, for requests no HTTP client would send.
class RawConnection {
  public:
    explicit RawConnection(int port) : fd_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connected_ = connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        timeval wait{5, 0};
        setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
    }
    ~RawConnection() { close(fd_); }
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    bool send(const std::string& text) {
        for (size_t sent = 0; sent < text.size();) {
            ssize_t n = ::send(fd_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (n <= 0) {
                return false;
            }
            sent += static_cast<size_t>(n);
        }
        return connected_;
    }
    void closeSending() { shutdown(fd_, SHUT_WR); }
    // Everything until the service closes, or what came within the wait.
    std::string readToEnd() {
        std::string text;
        char buffer[16 * 1024];
        ssize_t n;
        while ((n = recv(fd_, buffer, sizeof buffer, 0)) > 0) {
            text.append(buffer, static_cast<size_t>(n));
        }
        return text;
    }

  private:
    int fd_;
    bool connected_ = false;
};

struct Answer {
    int status;
    std::string head;
};

// The answers in a connection's bytes, one after the other, each by its Content-Length.
std::vector<Answer> answersIn(const std::string& text) {
    std::vector<Answer> answers;
    size_t at = 0;
    while (text.compare(at, 9, "HTTP/1.1 ") == 0) {
        size_t headEnd = text.find("\r\n\r\n", at);
        if (headEnd == std::string::npos) {
            break;
        }
        std::string head = text.substr(at, headEnd - at);
        size_t length = head.find("Content-Length: ");
        answers.push_back({std::stoi(text.substr(at + 9, 3)), head});
        at = headEnd + 4 + (length == std::string::npos ? 0 : std::stoul(head.substr(length + 16)));
    }
    return answers;
}

const std::string kHealth = "GET /admin/health HTTP/1.1\r\nHost: t\r\n";
const std::string kLast = "Connection: close\r\n\r\n";

struct Exchange {
    const char* name;
    std::string request;
    bool closeSending;          // the client shuts its sending side after the request
    std::vector<int> statuses;  // of the answers, in order
    std::string header = "";    // a line the last answer carries
};

class ServiceConnectionTest : public ServiceFixture,
                              public ::testing::WithParamInterface<Exchange> {};

TEST_P(ServiceConnectionTest, EveryRequestIsAnsweredAtOnce) {
    const Exchange& exchange = GetParam();
    RawConnection connection(service().port());
    auto start = Clock::now();
    ASSERT_TRUE(connection.send(exchange.request));
    if (exchange.closeSending) {
        connection.closeSending();
    }
    std::string text = connection.readToEnd();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(3));
    auto answers = answersIn(text);
    std::vector<int> statuses;
    for (const auto& answer : answers) {
        statuses.push_back(answer.status);
    }
    EXPECT_EQ(statuses, exchange.statuses) << text.substr(0, 400);
    if (!exchange.header.empty() && !answers.empty()) {
        EXPECT_NE(answers.back().head.find(exchange.header), std::string::npos)
            << answers.back().head;
    }
}

std::string manyHeaders(int count, size_t size) {
    std::string headers;
    for (int i = 0; i < count; ++i) {
        headers += "X-Filler-" + std::to_string(i) + ": " + std::string(size, 'f') + "\r\n";
    }
    return headers;
}

const std::string kImage = "GET /media/images/art-01.jpg HTTP/1.1\r\nHost: t\r\n";

INSTANTIATE_TEST_SUITE_P(
    Requests,
    ServiceConnectionTest,
    ::testing::Values(
        Exchange{"PostWithoutLength",
                 "POST /v1/user/downloads HTTP/1.1\r\nHost: t\r\n\r\n",
                 false,
                 {411}},
        Exchange{"PutWithoutLength",
                 "PUT /admin/faults HTTP/1.1\r\nHost: t\r\n\r\nbody",
                 false,
                 {411}},
        Exchange{"BodyOverTheLimit",
                 "POST /v1/user/downloads HTTP/1.1\r\nHost: t\r\nContent-Length: 9000000\r\n\r\n",
                 false,
                 {413}},
        Exchange{"LongRequestLine",
                 "GET /" + std::string(9000, 'a') + " HTTP/1.1\r\n\r\n",
                 false,
                 {414}},
        Exchange{"LongHeaderLine", kHealth + manyHeaders(1, 9000) + "\r\n", false, {431}},
        Exchange{"LargeHeaderBlock", kHealth + manyHeaders(90, 1000) + "\r\n", false, {431}},
        Exchange{"Pipelined", kHealth + "\r\n" + kHealth + kLast, false, {200, 200}},
        Exchange{"PipelinedAfterABody",
                 "POST /v1/featured HTTP/1.1\r\nHost: t\r\nContent-Length: 3\r\n\r\nabc" + kHealth +
                     kLast,
                 false,
                 {401, 200}},
        Exchange{"HalfClosed", kHealth + "\r\n", true, {200}},
        Exchange{"DeleteWithoutLength",
                 "DELETE /admin/report HTTP/1.1\r\nHost: t\r\n" + kLast,
                 false,
                 {200}},
        Exchange{"RangeBeyondTheEnd",
                 kImage + "Range: bytes=5000-\r\n" + kLast,
                 false,
                 {416},
                 "Content-Range: bytes */2048"},
        Exchange{"MalformedRangeGetsTheWhole",
                 kImage + "Range: bytes=9-2\r\n" + kLast,
                 false,
                 {200},
                 "Content-Length: 2048"},
        Exchange{"RangeServedInPart",
                 kImage + "Range: bytes=0-9\r\n" + kLast,
                 false,
                 {206},
                 "Content-Range: bytes 0-9/2048"}),
    [](const auto& exchange) { return std::string(exchange.param.name); });

// No number of idle or slow peers holds up the answer to another.
class ServiceManyPeersTest : public ServiceFixture {};

TEST_F(ServiceManyPeersTest, TwoHundredHalfSentRequestsDoNotDelayAnother) {
    std::vector<std::unique_ptr<RawConnection>> slow;
    for (int i = 0; i < 200; ++i) {
        slow.push_back(std::make_unique<RawConnection>(service().port()));
        ASSERT_TRUE(slow.back()->send(kHealth));
    }
    auto start = Clock::now();
    EXPECT_EQ(raw("GET", "/admin/health").status, 200);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));
}

// Narrow limits, so that a peer too slow for them is seen out quickly.
class ServiceSlowPeerTest : public ServiceFixture {
  protected:
    ServiceSlowPeerTest() {
        connections_.headSeconds = 0.3;
        connections_.bodySeconds = 0.3;
    }
};

TEST_F(ServiceSlowPeerTest, AHeadOrBodyThatTakesTooLongIsAnsweredAndClosed) {
    struct Case {
        std::string sent;
        int status;
    };
    for (const Case& slow :
         {Case{kHealth, 408},
          Case{"POST /v1/featured HTTP/1.1\r\nHost: t\r\nContent-Length: 9\r\n\r\nabc", 400}}) {
        RawConnection connection(service().port());
        auto start = Clock::now();
        ASSERT_TRUE(connection.send(slow.sent));
        auto answers = answersIn(connection.readToEnd());
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(3));
        ASSERT_EQ(answers.size(), 1u) << slow.sent;
        EXPECT_EQ(answers[0].status, slow.status);
    }
}

}  // namespace
}  // namespace tb::test
