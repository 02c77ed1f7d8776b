#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <httplib.h>

#include "LoopbackListener.h"
#include "platform/RunLoop.h"
#include "platform/linux/CurlHttpTransport.h"
#include "support/FileContents.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::Optional;

const std::string kTrickleChunk(100, 't');

class CurlHttpTransportTest : public ::testing::Test {
  protected:
    void SetUp() override {
        server_.Get("/hello", [](const httplib::Request& request, httplib::Response& response) {
            response.set_header("X-Answer", "42");
            response.set_content("hello " + request.get_header_value("X-Caller"), "text/plain");
        });
        server_.Get("/missing", [](const httplib::Request&, httplib::Response& response) {
            response.status = 404;
            response.set_content("{\"error\":\"missing\"}", "application/json");
        });
        const auto echo = [](const httplib::Request& request, httplib::Response& response) {
            response.set_content(request.method + " " + request.get_header_value("Content-Type") +
                                     " " + request.body,
                                 "text/plain");
        };
        server_.Post("/echo", echo);
        server_.Put("/echo", echo);
        server_.Delete("/echo", echo);
        server_.Get("/redirect", [](const httplib::Request&, httplib::Response& response) {
            response.set_redirect("/hello");
        });
        server_.Get("/slow", [this](const httplib::Request&, httplib::Response& response) {
            waitForRelease();
            response.set_content("late", "text/plain");
        });
        server_.Get("/trickle", [](const httplib::Request&, httplib::Response& response) {
            // 25 chunks, 100 ms apart: 2.5 seconds of a slow answer that keeps flowing. (Of a
            // type the server doesn't compress, which would hold the chunks back.)
            response.set_chunked_content_provider(
                "application/octet-stream", [](size_t offset, httplib::DataSink& sink) {
                    if (offset >= 25 * kTrickleChunk.size()) {
                        sink.done();
                        return true;
                    }
                    std::this_thread::sleep_for(std::chrono::milliseconds(100));
                    return sink.write(kTrickleChunk.data(), kTrickleChunk.size());
                });
        });
        server_.Get("/stall", [this](const httplib::Request&, httplib::Response& response) {
            // Sends the head and a byte of the body, then nothing more. (One byte: more would
            // keep curl's running average of the speed up for a few seconds longer.)
            response.set_chunked_content_provider("application/octet-stream",
                                                  [this](size_t offset, httplib::DataSink& sink) {
                                                      if (offset == 0) {
                                                          return sink.write("0", 1);
                                                      }
                                                      waitForRelease();
                                                      return false;
                                                  });
        });
        server_.Get("/big", [](const httplib::Request&, httplib::Response& response) {
            response.set_content(bigBody(), "application/octet-stream");
        });
        server_.Get("/cut", [](const httplib::Request&, httplib::Response& response) {
            // Promises 100000 bytes, sends ten and closes the connection.
            response.set_content_provider(100000, "application/octet-stream",
                                          [](size_t offset, size_t, httplib::DataSink& sink) {
                                              if (offset > 0) {
                                                  return false;
                                              }
                                              sink.write("0123456789", 10);
                                              return true;
                                          });
        });
        server_.Get(R"(/number/(\d+))",
                    [](const httplib::Request& request, httplib::Response& response) {
                        response.set_content("n=" + request.matches[1].str(), "text/plain");
                    });
        port_ = server_.bind_to_any_port("127.0.0.1");
        ASSERT_GT(port_, 0);
        serverThread_ = std::thread([this] { server_.listen_after_bind(); });
    }

    void TearDown() override {
        // Closing the transport's kept-alive connections lets the server's workers go.
        transport_.reset();
        {
            std::lock_guard lock(slowMutex_);
            released_ = true;
        }
        slowReleased_.notify_all();
        server_.stop();
        serverThread_.join();
    }

    // Holds a server worker until the test ends.
    void waitForRelease() {
        std::unique_lock lock(slowMutex_);
        slowReleased_.wait_for(lock, std::chrono::seconds(10), [this] { return released_; });
    }

    static std::string bigBody() {
        std::string body;
        for (int i = 0; body.size() < (1 << 20); ++i) {
            body += std::to_string(i) + ",";
        }
        return body;
    }

    std::string url(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(port_) + path;
    }

    HttpRequest request(const std::string& method, const std::string& path) const {
        HttpRequest made;
        made.method = method;
        made.url = url(path);
        made.timeoutSeconds = 10.0;
        return made;
    }

    // Sends the request and runs the main loop until its completion has run.
    HttpResult perform(HttpRequest request) {
        std::optional<HttpResult> result;
        transport_->send(std::move(request), [&](HttpResult arrived) {
            EXPECT_TRUE(loop_.isCurrent());
            EXPECT_FALSE(result.has_value()) << "completion ran twice";
            result = std::move(arrived);
        });
        EXPECT_TRUE(loop_.runUntil([&] { return result.has_value(); }, 15.0));
        return result.value_or(HttpResult{});
    }

    // Sends the request without waiting, counting its completions into `completions`.
    std::shared_ptr<HttpTask> sendCounting(HttpRequest request,
                                           int& completions,
                                           std::optional<HttpResult>& result) {
        return transport_->send(std::move(request), [&](HttpResult arrived) {
            ++completions;
            result = std::move(arrived);
        });
    }

    // Runs the loop a little longer, so that a second completion would have a chance to run.
    void settle() {
        loop_.runUntil([] { return false; }, 0.2);
    }

    httplib::Server server_;
    int port_ = 0;
    std::thread serverThread_;
    std::mutex slowMutex_;
    std::condition_variable slowReleased_;
    bool released_ = false;

    RunLoop loop_;
    std::unique_ptr<CurlHttpTransport> transport_ = std::make_unique<CurlHttpTransport>(loop_);
    test::TempDir dir_;
};

TEST_F(CurlHttpTransportTest, AnswersWithStatusBodyAndHeaders) {
    auto hello = request("GET", "/hello");
    hello.headers = {{"X-Caller", "me"}};
    const HttpResult result = perform(hello);

    ASSERT_TRUE(result.ok()) << result.error->message;
    EXPECT_EQ(result.statusCode(), 200);
    EXPECT_EQ(result.response->body, "hello me");
    EXPECT_THAT(result.response->header("x-answer"), Optional(std::string("42")));
    EXPECT_EQ(result.response->url, url("/hello"));

    const HttpResult head = perform(request("HEAD", "/hello"));
    ASSERT_TRUE(head.ok());
    EXPECT_EQ(head.statusCode(), 200);
    EXPECT_EQ(head.response->body, "");

    // An error status is a response, not an error.
    const HttpResult missing = perform(request("GET", "/missing"));
    EXPECT_FALSE(missing.error.has_value());
    EXPECT_EQ(missing.statusCode(), 404);
    EXPECT_EQ(missing.response->body, "{\"error\":\"missing\"}");
}

TEST_F(CurlHttpTransportTest, SendsMethodsWithTheirBodies) {
    for (const std::string method : {"POST", "PUT", "DELETE"}) {
        auto sent = request(method, "/echo");
        sent.headers = {{"Content-Type", "application/x-www-form-urlencoded; charset=utf-8"}};
        sent.body = "a=1&b=%2B";
        const HttpResult result = perform(sent);
        ASSERT_TRUE(result.ok()) << method;
        EXPECT_EQ(result.response->body,
                  method + " application/x-www-form-urlencoded; charset=utf-8 a=1&b=%2B");
    }
    // A large body goes at once, without waiting for a "100 Continue".
    auto large = request("POST", "/echo");
    large.headers = {{"Content-Type", "text/plain"}};
    large.body = std::string(200000, 'x');
    EXPECT_EQ(perform(large).response->body, "POST text/plain " + large.body);
}

TEST_F(CurlHttpTransportTest, FollowsRedirectsAndReportsTheFinalAddress) {
    const HttpResult result = perform(request("GET", "/redirect"));

    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.response->body, "hello ");
    EXPECT_EQ(result.response->url, url("/hello"));
}

TEST_F(CurlHttpTransportTest, AnAnswerIdleForItsTimeOutFailsWithTimedOut) {
    auto slow = request("GET", "/slow");
    slow.timeoutSeconds = 0.3;
    const HttpResult result = perform(slow);

    ASSERT_TRUE(result.error.has_value());
    EXPECT_EQ(result.error->domain, URLError::kDomain);
    EXPECT_EQ(result.error->code, URLError::kTimedOut);
    EXPECT_EQ(result.error->userInfo.at("NSErrorFailingURLStringKey"), url("/slow"));

    // A body that stops flowing half way times out the same way.
    auto stalled = request("GET", "/stall");
    stalled.timeoutSeconds = 0.3;
    EXPECT_EQ(perform(stalled).error->code, URLError::kTimedOut);
}

TEST_F(CurlHttpTransportTest, ASlowAnswerThatKeepsFlowingIsNotCutByItsTimeOut) {
    auto trickle = request("GET", "/trickle");
    trickle.timeoutSeconds = 1.0;  // the whole answer takes two and a half times as long
    const auto started = std::chrono::steady_clock::now();
    const HttpResult result = perform(trickle);

    ASSERT_TRUE(result.ok()) << (result.error ? result.error->message : "");
    EXPECT_EQ(result.response->body.size(), 25 * kTrickleChunk.size());
    EXPECT_GT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
}

TEST_F(CurlHttpTransportTest, CancelCompletesOnceWithCancelledAndAfterCompletionDoesNothing) {
    int completions = 0;
    std::optional<HttpResult> result;
    auto task = sendCounting(request("GET", "/slow"), completions, result);
    task->cancel();
    task->cancel();
    ASSERT_TRUE(loop_.runUntil([&] { return result.has_value(); }, 5.0));
    settle();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(result->error->code, URLError::kCancelled);
    EXPECT_FALSE(result->response.has_value());

    int doneCompletions = 0;
    std::optional<HttpResult> done;
    auto finished = sendCounting(request("GET", "/hello"), doneCompletions, done);
    ASSERT_TRUE(loop_.runUntil([&] { return done.has_value(); }, 5.0));
    finished->cancel();
    settle();
    EXPECT_EQ(doneCompletions, 1);
    EXPECT_TRUE(done->ok());
}

TEST_F(CurlHttpTransportTest, TransportFailuresMapToTheirErrorCodes) {
    HttpRequest refused;
    refused.url = "http://127.0.0.1:" + std::to_string(test::closedLoopbackPort()) + "/";
    EXPECT_EQ(perform(refused).error->code, URLError::kCannotConnectToHost);

    EXPECT_EQ(perform(request("GET", "/cut")).error->code, URLError::kNetworkConnectionLost);

    // TLS spoken to a plain HTTP server fails the handshake.
    HttpRequest tls;
    tls.url = "https://127.0.0.1:" + std::to_string(port_) + "/hello";
    EXPECT_EQ(perform(tls).error->code, URLError::kSecureConnectionFailed);

    HttpRequest unsupported;
    unsupported.url = "ftp://127.0.0.1/file";
    EXPECT_EQ(perform(unsupported).error->code, URLError::kUnsupportedURL);

    auto unwritable = request("GET", "/big");
    unwritable.destinationFile = dir_.file("no-such-folder/song.mp3");
    EXPECT_EQ(perform(unwritable).error->code, URLError::kCannotWriteToFile);
}

TEST_F(CurlHttpTransportTest, DownloadsIntoTheDestinationThroughATemporaryFile) {
    const std::string destination = dir_.file("song.mp3");
    auto download = request("GET", "/big");
    download.destinationFile = destination;
    const HttpResult result = perform(download);

    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.response->body, "");
    EXPECT_EQ(test::readFileText(destination), bigBody());
    EXPECT_THAT(test::folderEntries(dir_.path()), ElementsAre("song.mp3"));
}

TEST_F(CurlHttpTransportTest, AFailedDownloadLeavesTheDestinationAlone) {
    const std::string destination = dir_.file("song.mp3");
    ASSERT_TRUE(test::writeFileText(destination, "the old file"));

    auto notFound = request("GET", "/missing");
    notFound.destinationFile = destination;
    const HttpResult missing = perform(notFound);
    EXPECT_EQ(missing.statusCode(), 404);
    EXPECT_EQ(missing.response->body, "{\"error\":\"missing\"}");

    auto cut = request("GET", "/cut");
    cut.destinationFile = destination;
    EXPECT_EQ(perform(cut).error->code, URLError::kNetworkConnectionLost);

    auto slow = request("GET", "/slow");
    slow.destinationFile = destination;
    slow.timeoutSeconds = 0.2;
    EXPECT_EQ(perform(slow).error->code, URLError::kTimedOut);

    EXPECT_EQ(test::readFileText(destination), "the old file");
    EXPECT_THAT(test::folderEntries(dir_.path()), ElementsAre("song.mp3"));
}

TEST_F(CurlHttpTransportTest, StreamsChunksAndProgressWithoutKeepingTheBody) {
    std::mutex mutex;
    std::string streamed;
    int chunks = 0;
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
    auto stream = request("GET", "/big");
    stream.onData = [&](std::string_view chunk) {
        std::lock_guard lock(mutex);
        streamed.append(chunk);
        ++chunks;
    };
    stream.onProgress = [&](std::int64_t received, std::int64_t expected) {
        std::lock_guard lock(mutex);
        progress.emplace_back(received, expected);
    };
    const HttpResult result = perform(stream);

    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.response->body, "");
    std::lock_guard lock(mutex);
    const auto size = static_cast<std::int64_t>(bigBody().size());
    EXPECT_EQ(streamed, bigBody());
    EXPECT_GT(chunks, 1);
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back(), std::make_pair(size, size));
    for (size_t i = 1; i < progress.size(); ++i) {
        EXPECT_GT(progress[i].first, progress[i - 1].first);
    }
}

TEST_F(CurlHttpTransportTest, ManyRequestsAtOnceEachCompleteOnceWithTheirOwnAnswer) {
    constexpr int kCount = 40;
    std::vector<int> completions(kCount, 0);
    std::vector<std::string> bodies(kCount);
    int done = 0;
    for (int i = 0; i < kCount; ++i) {
        transport_->send(request("GET", "/number/" + std::to_string(i)), [&, i](HttpResult result) {
            ++completions[i];
            bodies[i] = result.ok() ? result.response->body : "error";
            ++done;
        });
    }
    ASSERT_TRUE(loop_.runUntil([&] { return done == kCount; }, 20.0));
    settle();

    for (int i = 0; i < kCount; ++i) {
        EXPECT_EQ(completions[i], 1) << i;
        EXPECT_EQ(bodies[i], "n=" + std::to_string(i));
    }
}

TEST_F(CurlHttpTransportTest, DestroyingTheTransportCancelsWhatIsInFlight) {
    std::vector<std::int64_t> codes;
    std::vector<std::shared_ptr<HttpTask>> tasks;
    auto download = request("GET", "/slow");
    download.destinationFile = dir_.file("song.mp3");
    for (const auto& sent :
         {request("GET", "/slow"), request("GET", "/slow"), request("GET", "/slow"), download}) {
        tasks.push_back(transport_->send(sent, [&](HttpResult result) {
            codes.push_back(result.error ? result.error->code : 0);
        }));
    }
    // Let the transfers reach the server before the transport goes away.
    loop_.runUntil([] { return false; }, 0.2);

    transport_.reset();
    for (const auto& task : tasks) {
        task->cancel();  // harmless once the transport is gone
    }
    ASSERT_TRUE(loop_.runUntil([&] { return codes.size() == 4; }, 5.0));
    settle();

    EXPECT_EQ(codes, std::vector<std::int64_t>(4, URLError::kCancelled));
    EXPECT_TRUE(test::folderEntries(dir_.path()).empty());
}

}  // namespace
}  // namespace tb
