// What the transport takes of an answer: a body kept in memory stops at its limit, counted
// on the decoded bytes, so that no answer can take the client's memory.

#include <atomic>
#include <optional>
#include <string>

#include "platform/RunLoop.h"
#include "platform/linux/CurlHttpTransport.h"
#include "support/FileContents.h"
#include "support/HostileServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using test::HostileServer;
using ::testing::HasSubstr;

constexpr std::int64_t kMemoryBound = std::int64_t{64} << 20;

struct HostileCase {
    const char* name;
    HostileServer::Answer answer;
    const char* message;
};

class HttpBodyLimitTest : public ::testing::Test {
  protected:
    HttpResult perform(HttpRequest request) {
        std::optional<HttpResult> result;
        transport_.send(std::move(request),
                        [&](HttpResult arrived) { result = std::move(arrived); });
        EXPECT_TRUE(loop_.runUntil([&] { return result.has_value(); }, 60.0));
        return result.value_or(HttpResult{});
    }

    std::optional<HostileServer> server_;
    RunLoop loop_;
    CurlHttpTransport transport_{loop_};
    test::TempDir dir_;
};

class HostileAnswerTest : public HttpBodyLimitTest,
                          public ::testing::WithParamInterface<HostileCase> {};

TEST_P(HostileAnswerTest, AnAnswerPastItsLimitFailsWithoutTakingTheMemory) {
    server_.emplace(GetParam().answer);
    const std::int64_t before = test::peakResidentBytes();
    HttpRequest request;
    request.url = server_->url("/v1/music/trending");
    const HttpResult result = perform(request);

    ASSERT_TRUE(result.error.has_value());
    EXPECT_EQ(result.error->domain, URLError::kDomain);
    EXPECT_EQ(result.error->code, URLError::kDataLengthExceedsMaximum);
    EXPECT_EQ(result.error->message, GetParam().message);
    EXPECT_LT(test::peakResidentBytes() - before, kMemoryBound);
}

TEST_F(HttpBodyLimitTest, AStreamedBodyStopsOnlyAtTheLimitItsCallerSets) {
    server_.emplace(HostileServer::Answer::gzipBomb);
    HttpRequest request;
    request.url = server_->url("/media/song.mp3");
    request.destinationFile = dir_.file("song.mp3");
    request.maxBodyBytes = std::int64_t{6} << 20;
    EXPECT_EQ(perform(request).error->message, "The service's answer is larger than 6 MB");
    EXPECT_TRUE(test::folderEntries(dir_.path()).empty());

    // Without a limit of its own, a body handed to onData is never held, and the limit of a
    // body kept in memory doesn't cut it.
    std::atomic<std::int64_t> streamed = 0;
    request.destinationFile.clear();
    request.maxBodyBytes.reset();
    request.onData = [&](std::string_view chunk) {
        const auto before = streamed.fetch_add(static_cast<std::int64_t>(chunk.size()));
        if (before <= 2 * kMaxKeptBodyBytes && streamed > 2 * kMaxKeptBodyBytes) {
            loop_.post([] {});  // wakes the main loop to look
        }
    };
    std::optional<HttpResult> cut;
    auto task = transport_.send(request, [&](HttpResult arrived) { cut = std::move(arrived); });
    ASSERT_TRUE(loop_.runUntil([&] { return streamed > 2 * kMaxKeptBodyBytes; }, 60.0));
    task->cancel();
    ASSERT_TRUE(loop_.runUntil([&] { return cut.has_value(); }, 10.0));
    EXPECT_EQ(cut->error->code, URLError::kCancelled);
}

INSTANTIATE_TEST_SUITE_P(
    HostileAnswers,
    HostileAnswerTest,
    ::testing::Values(HostileCase{"EndlessBody", HostileServer::Answer::endlessBody,
                                  "The service's answer is larger than 4 MB"},
                      HostileCase{"GzipBomb", HostileServer::Answer::gzipBomb,
                                  "The service's answer is larger than 4 MB"},
                      HostileCase{"EndlessHeaders", HostileServer::Answer::endlessHeaders,
                                  "The service's answer has more than 256 KB of headers"}),
    [](const auto& named) { return std::string(named.param.name); });

}  // namespace
}  // namespace tb
