#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Error.h"

namespace tb {

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

// The value of the first header named `name` (compared without case), if any.
std::optional<std::string> findHeader(const HttpHeaders& headers, std::string_view name);

// Sets the header `name` (compared without case) to `value`: the first one found is replaced
// and any further ones removed; without one, it is added at the end.
void setHeader(HttpHeaders& headers, std::string_view name, std::string value);

// The most body bytes an answer kept in memory may have: far above any page of the
// catalogue, and small enough that an answer that reaches it can still be parsed in a few
// tens of MB.
inline constexpr std::int64_t kMaxKeptBodyBytes = 4 << 20;

namespace URLError {
// The platform's code for an answer larger than the request takes.
inline constexpr std::int64_t kDataLengthExceedsMaximum = -1103;
}  // namespace URLError

struct HttpRequest {
    std::string method = "GET";
    std::string url;
    HttpHeaders headers;
    std::string body;
    double timeoutSeconds = 25.0;

    // Where the response body goes. By default it is kept in HttpResponse::body. With
    // destinationFile set it is written there instead (through a temporary file that is
    // renamed only when the transfer succeeds with a 2xx status). With onData set, every
    // chunk is handed over as it arrives and nothing is kept.
    std::string destinationFile;

    // Both run on the network thread: they must be thread-safe and must not touch
    // application state. Application work belongs in the completion.
    std::function<void(std::string_view chunk)> onData;
    std::function<void(std::int64_t received, std::int64_t expected)>
        onProgress;  // expected -1 if unknown

    // The most body bytes the request takes, counted as they are delivered: after decoding,
    // so a small compressed answer that inflates counts as what it inflates to. Past it the
    // transfer stops and fails with URLError::kDataLengthExceedsMaximum. Without a value, a
    // body kept in HttpResponse::body gets kMaxKeptBodyBytes, and one that goes to a file or
    // to onData (never held whole) gets no limit. Zero or less: no limit.
    std::optional<std::int64_t> maxBodyBytes;
};

struct HttpResponse {
    int statusCode = 0;
    HttpHeaders headers;
    std::string body;
    std::string url;  // the final address, after redirects

    std::optional<std::string> header(std::string_view name) const {
        return findHeader(headers, name);
    }
};

// What a request ended with. An HTTP status of any value is a response, not an error;
// `error` is set when the transfer itself failed (domain URLError::kDomain: -1001 timed out,
// -999 cancelled, -1009 not connected, ...), and `response` may still hold what came.
struct HttpResult {
    std::optional<HttpResponse> response;
    std::optional<Error> error;

    bool ok() const { return !error && response; }
    int statusCode() const { return response ? response->statusCode : 0; }
};

class HttpTask {
  public:
    virtual ~HttpTask() = default;
    // Stops the transfer; the completion then runs with the -999 error.
    virtual void cancel() = 0;
};

// The HTTP port. The Linux implementation runs libcurl's multi interface on a network
// thread; completions always arrive on the main queue, exactly once per request.
class HttpTransport {
  public:
    using Completion = std::function<void(HttpResult result)>;

    virtual ~HttpTransport() = default;
    virtual std::shared_ptr<HttpTask> send(HttpRequest request, Completion completion) = 0;
};

}  // namespace tb
