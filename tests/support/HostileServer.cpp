#include "support/HostileServer.h"

#include <array>
#include <memory>

#include <httplib.h>
#include <sys/resource.h>
#include <zlib.h>

namespace tb::test {

namespace {

constexpr std::size_t kChunk = 64 << 10;
constexpr std::int64_t kEndlessBodyBytes = std::int64_t{256} << 20;
constexpr std::int64_t kBombBytes = std::int64_t{1} << 30;
constexpr std::size_t kHeaderBytes = 4 << 20;

// Deflates zeros into gzip as the answer is sent, so the whole bomb is never held.
class GzipZeros {
  public:
    GzipZeros() { deflateInit2(&stream_, 9, Z_DEFLATED, 15 + 16, 9, Z_DEFAULT_STRATEGY); }
    ~GzipZeros() { deflateEnd(&stream_); }
    GzipZeros(const GzipZeros&) = delete;
    GzipZeros& operator=(const GzipZeros&) = delete;

    // The next piece of compressed bytes; false once everything has been written.
    bool write(httplib::DataSink& sink) {
        if (finished_) {
            sink.done();
            return true;
        }
        static const std::array<unsigned char, kChunk> zeros{};
        const bool last = fed_ + static_cast<std::int64_t>(kChunk) >= kBombBytes;
        fed_ += static_cast<std::int64_t>(kChunk);
        stream_.next_in = const_cast<unsigned char*>(zeros.data());
        stream_.avail_in = kChunk;
        std::array<unsigned char, kChunk> out{};
        do {
            stream_.next_out = out.data();
            stream_.avail_out = out.size();
            deflate(&stream_, last ? Z_FINISH : Z_NO_FLUSH);
            const std::size_t made = out.size() - stream_.avail_out;
            if (made > 0 && !sink.write(reinterpret_cast<const char*>(out.data()), made)) {
                return false;
            }
        } while (stream_.avail_out == 0);
        finished_ = last;
        return true;
    }

  private:
    z_stream stream_{};
    std::int64_t fed_ = 0;
    bool finished_ = false;
};

// Bodies are of a type the server doesn't compress itself, so that what is sent is exactly
// what is made here.
void answer(HostileServer::Answer kind, httplib::Response& response) {
    switch (kind) {
        case HostileServer::Answer::endlessBody:
            response.set_chunked_content_provider(
                "application/octet-stream", [](std::size_t offset, httplib::DataSink& sink) {
                    static const std::string chunk(kChunk, ' ');
                    if (static_cast<std::int64_t>(offset) >= kEndlessBodyBytes) {
                        sink.done();
                        return true;
                    }
                    return sink.write(chunk.data(), chunk.size());
                });
            return;
        case HostileServer::Answer::gzipBomb: {
            response.set_header("Content-Encoding", "gzip");
            auto zeros = std::make_shared<GzipZeros>();
            response.set_chunked_content_provider(
                "application/octet-stream",
                [zeros](std::size_t, httplib::DataSink& sink) { return zeros->write(sink); });
            return;
        }
        case HostileServer::Answer::endlessHeaders:
            for (std::size_t i = 0; i * 100 < kHeaderBytes; ++i) {
                response.set_header("X-Filler-" + std::to_string(i), std::string(80, 'h'));
            }
            response.set_content("", "application/json");
            return;
    }
}

}  // namespace

HostileServer::HostileServer(Answer kind) : server_(std::make_unique<httplib::Server>()) {
    const auto handler = [kind](const httplib::Request&, httplib::Response& response) {
        answer(kind, response);
    };
    server_->Get(".*", handler);
    server_->Post(".*", handler);
    port_ = server_->bind_to_any_port("127.0.0.1");
    // Bound is listening: a request made from now on waits for the loop to accept it.
    thread_ = std::thread([this] { server_->listen_after_bind(); });
}

HostileServer::~HostileServer() {
    server_->stop();
    thread_.join();
}

std::string HostileServer::url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::int64_t peakResidentBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return std::int64_t{usage.ru_maxrss} * 1024;
}

std::int64_t peakChildResidentBytes() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return std::int64_t{usage.ru_maxrss} * 1024;
}

}  // namespace tb::test
