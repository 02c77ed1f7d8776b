#pragma once

#include <memory>
#include <thread>

#include "platform/HttpTransport.h"

namespace tb {

class MainQueue;

// The HTTP port on libcurl's multi interface. One network thread runs every transfer; new
// requests and cancellations reach it through curl_multi_wakeup, and each completion is
// posted to the main queue exactly once.
//
// Details the callers rely on:
// - timeoutSeconds is an idle time-out, as the platform's request time-out is: connecting
//   may take that long, and afterwards the transfer fails with -1001 once it has moved less
//   than a byte a second for that long (rounded up to whole seconds). A slow answer that
//   keeps flowing is never cut. Zero or less means no limit.
// - Redirects are followed (at most 10, http and https only); TLS peers are verified.
// - An HTTP status of any value is a response. Transfer failures carry URLError codes:
//   -1001 timed out, -999 cancelled, -1003 host not found, -1004 cannot connect, -1009 not
//   connected (no route or no usable network interface), -1005 connection lost, -1200 TLS
//   failure, -3003 the destination file could not be written, -1103 the answer went past
//   its limit (the request's maxBodyBytes, or 256 KB of headers).
// - The body limit is counted on the decoded bytes, and the transfer stops at the chunk
//   that would pass it, so memory stays bounded whatever the server sends.
// - destinationFile: a 2xx body goes to a temporary file beside the destination, which is
//   renamed over it once the transfer has succeeded; in every other case the temporary
//   file is removed and the destination is left alone. The body of a non-2xx answer is
//   kept in HttpResponse::body instead (up to 1 MiB), so that callers can read the error.
// - Destroying the transport cancels what is still running: those requests complete with
//   -999 (posted before the destructor returns) and the network thread is joined. A task
//   handle that outlives the transport may still be cancelled; it does nothing.
class CurlHttpTransport final : public HttpTransport {
  public:
    explicit CurlHttpTransport(MainQueue& queue);
    ~CurlHttpTransport() override;
    CurlHttpTransport(const CurlHttpTransport&) = delete;
    CurlHttpTransport& operator=(const CurlHttpTransport&) = delete;

    std::shared_ptr<HttpTask> send(HttpRequest request, Completion completion) override;

  private:
    struct Shared;

    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

}  // namespace tb
