#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <curl/curl.h>

#include "platform/HttpTransport.h"

namespace tb {

// One request on its way: its curl handle, the response as it arrives, and the file a
// download goes to. Owned by the network thread from the moment it is picked up.
struct CurlTransfer {
    std::uint64_t id = 0;
    HttpRequest request;
    HttpTransport::Completion completion;

    CURL* easy = nullptr;
    curl_slist* headerList = nullptr;
    char errorBuffer[CURL_ERROR_SIZE] = {};
    HttpResponse response;
    std::int64_t received = 0;
    // Header bytes of the response on its way (a redirect starts the count again).
    std::size_t headerBytes = 0;
    // Set when the answer went past a limit and the transfer was stopped for it.
    std::string tooLarge;

    // The destination file's body sink, chosen at the first chunk once the status is known.
    bool sinkChosen = false;
    int tempFd = -1;
    std::string tempPath;
    bool fileWriteFailed = false;

    CurlTransfer() = default;
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;
    ~CurlTransfer();

    // Makes the easy handle for the request: redirects, TLS checks, the idle time-out, the
    // method, body and headers, and this transfer as the sink of body and header lines.
    // False when curl can't make a handle.
    bool configure();

    // The outcome once curl is done with `code`: the response (when a status arrived), a
    // URLError for a failed transfer, and a download put in place or discarded.
    HttpResult result(CURLcode code);

    // The outcome of a transfer cancelled by its caller, or one curl refused to start.
    HttpResult cancelledResult() const;
    HttpResult notStartedResult() const;

    // Closes and removes a download's temporary file, if any.
    void discardTempFile();

    long status() const;

    // Takes one chunk of the body: to the caller's onData, the response, or the download.
    // False (and `tooLarge` set) when the chunk would take the body past its limit.
    bool takeChunk(std::string_view chunk);

    // Takes one header line. False (and `tooLarge` set) when the response's header block
    // grows past what any real answer sends.
    bool takeHeaderLine(std::string_view line);

    // The request's body limit, or the default for where its body goes; 0 for none.
    std::int64_t bodyLimit() const;

  private:
    bool openTempFile();
    bool commitTempFile();
};

}  // namespace tb
