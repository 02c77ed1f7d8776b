#include "platform/linux/CurlTransfer.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/StringUtil.h"
#include "platform/linux/AtomicFile.h"
#include "platform/linux/CurlErrors.h"

namespace tb {

namespace {

constexpr long kMaxRedirects = 10;
constexpr std::size_t kMaxErrorBodyBytes = 1 << 20;
// Far more than any real answer's headers; curl bounds one line, this bounds their number.
constexpr std::size_t kMaxHeaderBytes = 256 << 10;
constexpr const char* kFailingURLKey = "NSErrorFailingURLStringKey";

bool isSuccessStatus(long status) {
    return status >= 200 && status <= 299;
}

std::size_t onBody(char* data, std::size_t size, std::size_t count, void* user) {
    auto& transfer = *static_cast<CurlTransfer*>(user);
    const std::size_t length = size * count;
    if (!transfer.takeChunk(std::string_view(data, length))) {
        return 0;  // curl ends the transfer with CURLE_WRITE_ERROR
    }
    if (transfer.request.onProgress) {
        curl_off_t expected = -1;
        curl_easy_getinfo(transfer.easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &expected);
        transfer.request.onProgress(transfer.received, expected >= 0 ? expected : -1);
    }
    return length;
}

// Header lines of every response on the way arrive here.
std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* user) {
    auto& transfer = *static_cast<CurlTransfer*>(user);
    const std::size_t length = size * count;
    return transfer.takeHeaderLine(std::string_view(data, length)) ? length : 0;
}

// "4 MB", "256 KB" or "1000 bytes", whichever unit divides the size.
std::string sizeText(std::int64_t bytes) {
    if (bytes % (1 << 20) == 0) {
        return std::to_string(bytes >> 20) + " MB";
    }
    if (bytes % (1 << 10) == 0) {
        return std::to_string(bytes >> 10) + " KB";
    }
    return std::to_string(bytes) + " bytes";
}

void setMethodAndBody(CURL* easy, const HttpRequest& request) {
    if (request.method == "GET") {
        curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);
        return;
    }
    if (request.method == "HEAD") {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
        return;
    }
    if (request.method == "POST") {
        curl_easy_setopt(easy, CURLOPT_POST, 1L);
    } else {
        curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, request.method.c_str());
    }
    if (request.method == "POST" || !request.body.empty()) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(request.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body.data());
    }
}

curl_slist* headerListFor(const HttpHeaders& headers) {
    curl_slist* list = nullptr;
    for (const auto& [name, value] : headers) {
        // "Name:" would tell curl to drop the header; "Name;" sends it with an empty value.
        const std::string line = value.empty() ? name + ";" : name + ": " + value;
        list = curl_slist_append(list, line.c_str());
    }
    // Bodies go at once; waiting for "100 Continue" only adds a round trip.
    return curl_slist_append(list, "Expect:");
}

Error urlError(std::int64_t code, std::string message, const std::string& url) {
    return Error{URLError::kDomain, code, std::move(message), {{kFailingURLKey, url}}};
}

Error errorForCurl(const CurlTransfer& transfer, CURLcode code) {
    CurlFailure failure;
    failure.curlCode = code;
    long osErrno = 0;
    curl_easy_getinfo(transfer.easy, CURLINFO_OS_ERRNO, &osErrno);
    failure.osErrno = static_cast<int>(osErrno);
    const char* ip = nullptr;
    curl_easy_getinfo(transfer.easy, CURLINFO_PRIMARY_IP, &ip);
    failure.loopbackTarget = ip != nullptr && isLoopbackAddress(ip);
    if (code == CURLE_COULDNT_RESOLVE_HOST || code == CURLE_COULDNT_CONNECT) {
        failure.hasNetworkInterface = hasUsableNetworkInterface();
    }
    if (!transfer.tooLarge.empty()) {
        return urlError(URLError::kDataLengthExceedsMaximum, transfer.tooLarge,
                        transfer.request.url);
    }
    if (transfer.fileWriteFailed) {
        failure.curlCode = CURLE_WRITE_ERROR;
    }
    std::string message =
        transfer.errorBuffer[0] != '\0' ? transfer.errorBuffer : curl_easy_strerror(code);
    return urlError(urlErrorCodeForCurl(failure), std::move(message), transfer.request.url);
}

}  // namespace

CurlTransfer::~CurlTransfer() {
    discardTempFile();
    curl_slist_free_all(headerList);
    if (easy != nullptr) {
        curl_easy_cleanup(easy);
    }
}

long CurlTransfer::status() const {
    long code = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &code);
    return code;
}

bool CurlTransfer::openTempFile() {
    std::string pattern = request.destinationFile + ".download-XXXXXX";
    tempFd = ::mkstemp(pattern.data());
    if (tempFd < 0) {
        return false;
    }
    tempPath = std::move(pattern);
    ::fchmod(tempFd, 0644);
    return true;
}

void CurlTransfer::discardTempFile() {
    if (tempFd >= 0) {
        ::close(tempFd);
        tempFd = -1;
    }
    if (!tempPath.empty()) {
        ::unlink(tempPath.c_str());
        tempPath.clear();
    }
}

// Flushes the temporary file and puts it in place of the destination. An empty 2xx
// body still produces an (empty) destination file.
bool CurlTransfer::commitTempFile() {
    if (tempFd < 0 && !openTempFile()) {
        return false;
    }
    const bool flushed = ::fsync(tempFd) == 0;
    const bool closed = ::close(tempFd) == 0;
    tempFd = -1;
    if (!flushed || !closed || ::rename(tempPath.c_str(), request.destinationFile.c_str()) != 0) {
        discardTempFile();
        return false;
    }
    tempPath.clear();
    return true;
}

std::int64_t CurlTransfer::bodyLimit() const {
    const bool keptInMemory = !request.onData && request.destinationFile.empty();
    return std::max<std::int64_t>(
        0, request.maxBodyBytes.value_or(keptInMemory ? kMaxKeptBodyBytes : 0));
}

// A status line starts a new response (a redirect or a 100 Continue), so only the last
// one's headers are kept and counted.
bool CurlTransfer::takeHeaderLine(std::string_view line) {
    const bool statusLine = line.substr(0, 5) == "HTTP/";
    if (statusLine) {
        response.headers.clear();
        headerBytes = 0;
    }
    headerBytes += line.size();
    if (headerBytes > kMaxHeaderBytes) {
        tooLarge = "The service's answer has more than " +
                   sizeText(static_cast<std::int64_t>(kMaxHeaderBytes)) + " of headers";
        return false;
    }
    if (const auto colon = line.find(':'); !statusLine && colon != std::string_view::npos) {
        response.headers.emplace_back(trimmed(line.substr(0, colon), " \t\r\n"),
                                      trimmed(line.substr(colon + 1), " \t\r\n"));
    }
    return true;
}

bool CurlTransfer::takeChunk(std::string_view chunk) {
    // Counted here, after decoding: a compressed answer counts as what it inflates to, and
    // nothing past the limit is ever held.
    const std::int64_t limit = bodyLimit();
    if (limit > 0 && received + static_cast<std::int64_t>(chunk.size()) > limit) {
        tooLarge = "The service's answer is larger than " + sizeText(limit);
        return false;
    }
    received += static_cast<std::int64_t>(chunk.size());
    if (request.onData) {
        request.onData(chunk);
        return true;
    }
    if (request.destinationFile.empty()) {
        response.body.append(chunk);
        return true;
    }
    if (!sinkChosen) {
        sinkChosen = true;
        if (isSuccessStatus(status()) && !openTempFile()) {
            fileWriteFailed = true;
            return false;
        }
    }
    if (tempFd < 0) {
        const std::size_t room =
            kMaxErrorBodyBytes - std::min(kMaxErrorBodyBytes, response.body.size());
        response.body.append(chunk.substr(0, room));
        return true;
    }
    if (!writeAll(tempFd, chunk)) {
        fileWriteFailed = true;
        return false;
    }
    return true;
}

bool CurlTransfer::configure() {
    easy = curl_easy_init();
    if (easy == nullptr) {
        return false;
    }
    curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, errorBuffer);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, kMaxRedirects);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    if (request.timeoutSeconds > 0.0) {
        // The time-out is an idle time-out, not a bound on the whole transfer: a long
        // download or a slow answer that keeps flowing must not be cut. Connecting gets the
        // time-out; after that, a transfer fails once less than a byte a second has moved
        // for that long (curl counts the stall in whole seconds).
        const long millis =
            std::max(1L, static_cast<long>(std::ceil(request.timeoutSeconds * 1000.0)));
        curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, millis);
        curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
        curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, std::max(1L, (millis + 999) / 1000));
    }
    setMethodAndBody(easy, request);
    headerList = headerListFor(request.headers);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headerList);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, onHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    return true;
}

HttpResult CurlTransfer::result(CURLcode code) {
    HttpResult outcome;
    const long httpStatus = status();
    if (httpStatus > 0) {
        char* finalURL = nullptr;
        curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &finalURL);
        response.statusCode = static_cast<int>(httpStatus);
        response.url = finalURL != nullptr ? finalURL : request.url;
    }
    if (code != CURLE_OK) {
        outcome.error = errorForCurl(*this, code);
    } else if (!request.destinationFile.empty() && isSuccessStatus(httpStatus) &&
               !commitTempFile()) {
        outcome.error = urlError(URLError::kCannotWriteToFile,
                                 "could not write the destination file", request.url);
    }
    discardTempFile();
    if (httpStatus > 0) {
        outcome.response = std::move(response);
    }
    return outcome;
}

HttpResult CurlTransfer::cancelledResult() const {
    HttpResult result;
    result.error = urlError(URLError::kCancelled, "cancelled", request.url);
    return result;
}

HttpResult CurlTransfer::notStartedResult() const {
    HttpResult outcome;
    outcome.error = urlError(URLError::kUnknown, "could not start the transfer", request.url);
    return outcome;
}

}  // namespace tb
