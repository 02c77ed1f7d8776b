#include "platform/linux/CurlHttpTransport.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <curl/curl.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/MainQueue.h"
#include "platform/StringUtil.h"
#include "platform/linux/AtomicFile.h"
#include "platform/linux/CurlErrors.h"

namespace tb {

namespace {

constexpr long kMaxRedirects = 10;
// Like the phone platform's default: more requests to one host wait for a free connection.
constexpr long kMaxConnectionsPerHost = 6;
constexpr std::size_t kMaxErrorBodyBytes = 1 << 20;
constexpr const char* kFailingURLKey = "NSErrorFailingURLStringKey";

std::once_flag curlGlobalInit;

bool isSuccessStatus(long status) {
    return status >= 200 && status <= 299;
}

// One request on its way. Owned by the network thread from the moment it is picked up.
struct Transfer {
    std::uint64_t id = 0;
    HttpRequest request;
    HttpTransport::Completion completion;

    CURL* easy = nullptr;
    curl_slist* headerList = nullptr;
    char errorBuffer[CURL_ERROR_SIZE] = {};
    HttpResponse response;
    std::int64_t received = 0;

    // The destination file's body sink, chosen at the first chunk once the status is known.
    bool sinkChosen = false;
    int tempFd = -1;
    std::string tempPath;
    bool fileWriteFailed = false;

    Transfer() = default;
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() {
        discardTempFile();
        curl_slist_free_all(headerList);
        if (easy != nullptr) {
            curl_easy_cleanup(easy);
        }
    }

    long status() const {
        long code = 0;
        curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &code);
        return code;
    }

    bool openTempFile() {
        std::string pattern = request.destinationFile + ".download-XXXXXX";
        tempFd = ::mkstemp(pattern.data());
        if (tempFd < 0) {
            return false;
        }
        tempPath = std::move(pattern);
        ::fchmod(tempFd, 0644);
        return true;
    }

    void discardTempFile() {
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
    bool commitTempFile() {
        if (tempFd < 0 && !openTempFile()) {
            return false;
        }
        const bool flushed = ::fsync(tempFd) == 0;
        const bool closed = ::close(tempFd) == 0;
        tempFd = -1;
        if (!flushed || !closed ||
            ::rename(tempPath.c_str(), request.destinationFile.c_str()) != 0) {
            discardTempFile();
            return false;
        }
        tempPath.clear();
        return true;
    }

    bool takeChunk(std::string_view chunk) {
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
};

std::size_t onBody(char* data, std::size_t size, std::size_t count, void* user) {
    auto& transfer = *static_cast<Transfer*>(user);
    const std::size_t length = size * count;
    if (!transfer.takeChunk(std::string_view(data, length))) {
        return 0;  // curl ends the transfer with CURLE_WRITE_ERROR
    }
    transfer.received += static_cast<std::int64_t>(length);
    if (transfer.request.onProgress) {
        curl_off_t expected = -1;
        curl_easy_getinfo(transfer.easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &expected);
        transfer.request.onProgress(transfer.received, expected >= 0 ? expected : -1);
    }
    return length;
}

// Header lines of every response on the way arrive here; a status line starts a new
// response (a redirect or a 100 Continue), so only the last one's headers are kept.
std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* user) {
    auto& transfer = *static_cast<Transfer*>(user);
    const std::size_t length = size * count;
    const std::string_view line(data, length);
    if (line.substr(0, 5) == "HTTP/") {
        transfer.response.headers.clear();
    } else if (const auto colon = line.find(':'); colon != std::string_view::npos) {
        transfer.response.headers.emplace_back(trimmed(line.substr(0, colon), " \t\r\n"),
                                               trimmed(line.substr(colon + 1), " \t\r\n"));
    }
    return length;
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

bool configure(Transfer& transfer) {
    CURL* easy = curl_easy_init();
    if (easy == nullptr) {
        return false;
    }
    transfer.easy = easy;
    const HttpRequest& request = transfer.request;
    curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PRIVATE, &transfer);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer.errorBuffer);
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
    transfer.headerList = headerListFor(request.headers);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer.headerList);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, onHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer);
    return true;
}

Error urlError(std::int64_t code, std::string message, const std::string& url) {
    return Error{URLError::kDomain, code, std::move(message), {{kFailingURLKey, url}}};
}

Error errorForCurl(const Transfer& transfer, CURLcode code) {
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
    if (transfer.fileWriteFailed) {
        failure.curlCode = CURLE_WRITE_ERROR;
    }
    std::string message =
        transfer.errorBuffer[0] != '\0' ? transfer.errorBuffer : curl_easy_strerror(code);
    return urlError(urlErrorCodeForCurl(failure), std::move(message), transfer.request.url);
}

HttpResult resultOf(Transfer& transfer, CURLcode code) {
    HttpResult result;
    const long status = transfer.status();
    if (status > 0) {
        char* finalURL = nullptr;
        curl_easy_getinfo(transfer.easy, CURLINFO_EFFECTIVE_URL, &finalURL);
        transfer.response.statusCode = static_cast<int>(status);
        transfer.response.url = finalURL != nullptr ? finalURL : transfer.request.url;
    }
    if (code != CURLE_OK) {
        result.error = errorForCurl(transfer, code);
    } else if (!transfer.request.destinationFile.empty() && isSuccessStatus(status) &&
               !transfer.commitTempFile()) {
        result.error = urlError(URLError::kCannotWriteToFile,
                                "could not write the destination file", transfer.request.url);
    }
    transfer.discardTempFile();
    if (status > 0) {
        result.response = std::move(transfer.response);
    }
    return result;
}

HttpResult cancelledResult(const Transfer& transfer) {
    HttpResult result;
    result.error = urlError(URLError::kCancelled, "cancelled", transfer.request.url);
    return result;
}

// What the caller's threads and the network thread share; everything else belongs to the
// network thread alone.
struct Mailbox {
    std::mutex mutex;
    CURLM* multi = nullptr;
    bool stopping = false;
    std::uint64_t nextId = 1;
    std::vector<std::unique_ptr<Transfer>> arrived;
    std::vector<std::uint64_t> cancelled;

    // Under `mutex`: asks the network thread to look at `arrived` and `cancelled`.
    void wake() {
        if (multi != nullptr) {
            curl_multi_wakeup(multi);
        }
    }
};

class CurlTask final : public HttpTask {
  public:
    CurlTask(std::weak_ptr<Mailbox> mailbox, std::uint64_t id)
        : mailbox_(std::move(mailbox)), id_(id) {}

    // A transport already gone has completed every request; there is nothing to stop.
    void cancel() override {
        if (auto mailbox = mailbox_.lock()) {
            std::lock_guard lock(mailbox->mutex);
            if (!mailbox->stopping) {
                mailbox->cancelled.push_back(id_);
                mailbox->wake();
            }
        }
    }

  private:
    std::weak_ptr<Mailbox> mailbox_;
    std::uint64_t id_;
};

// The network thread's loop: picks up new requests and cancellations, drives curl, and
// posts each finished transfer's completion to the main queue.
class NetworkLoop {
  public:
    NetworkLoop(CURLM* multi, MainQueue& queue) : multi_(multi), queue_(queue) {}

    // Returns false once the transport is stopping; every transfer has then completed.
    bool step(Mailbox& shared) {
        std::vector<std::unique_ptr<Transfer>> arrived;
        std::vector<std::uint64_t> cancelled;
        bool stopping = false;
        {
            std::lock_guard lock(shared.mutex);
            arrived.swap(shared.arrived);
            cancelled.swap(shared.cancelled);
            stopping = shared.stopping;
        }
        for (auto& transfer : arrived) {
            start(std::move(transfer));
        }
        for (const auto id : cancelled) {
            cancel(id);
        }
        if (stopping) {
            cancelAll();
            return false;
        }
        int running = 0;
        curl_multi_perform(multi_, &running);
        collectFinished();
        curl_multi_poll(multi_, nullptr, 0, 1000, nullptr);
        return true;
    }

  private:
    void start(std::unique_ptr<Transfer> transfer) {
        if (!configure(*transfer) || curl_multi_add_handle(multi_, transfer->easy) != CURLM_OK) {
            HttpResult result;
            result.error =
                urlError(URLError::kUnknown, "could not start the transfer", transfer->request.url);
            complete(*transfer, std::move(result));
            return;
        }
        const auto id = transfer->id;
        active_.emplace(id, std::move(transfer));
    }

    void cancel(std::uint64_t id) {
        const auto found = active_.find(id);
        if (found == active_.end()) {
            return;  // finished already: its completion is on its way
        }
        auto transfer = std::move(found->second);
        active_.erase(found);
        curl_multi_remove_handle(multi_, transfer->easy);
        complete(*transfer, cancelledResult(*transfer));
    }

    void cancelAll() {
        while (!active_.empty()) {
            cancel(active_.begin()->first);
        }
    }

    void collectFinished() {
        int left = 0;
        while (CURLMsg* message = curl_multi_info_read(multi_, &left)) {
            if (message->msg != CURLMSG_DONE) {
                continue;
            }
            Transfer* done = nullptr;
            curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &done);
            const CURLcode code = message->data.result;
            auto found = active_.find(done->id);
            auto transfer = std::move(found->second);
            active_.erase(found);
            curl_multi_remove_handle(multi_, transfer->easy);
            complete(*transfer, resultOf(*transfer, code));
        }
    }

    void complete(Transfer& transfer, HttpResult result) {
        transfer.discardTempFile();
        queue_.post(
            [completion = std::move(transfer.completion), result = std::move(result)]() mutable {
                if (completion) {
                    completion(std::move(result));
                }
            });
    }

    CURLM* multi_;
    MainQueue& queue_;
    std::unordered_map<std::uint64_t, std::unique_ptr<Transfer>> active_;
};

}  // namespace

struct CurlHttpTransport::Shared : Mailbox {};

CurlHttpTransport::CurlHttpTransport(MainQueue& queue) : shared_(std::make_shared<Shared>()) {
    std::call_once(curlGlobalInit, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    shared_->multi = curl_multi_init();
    curl_multi_setopt(shared_->multi, CURLMOPT_MAX_HOST_CONNECTIONS, kMaxConnectionsPerHost);
    thread_ = std::thread([multi = shared_->multi, &queue, shared = shared_] {
        NetworkLoop loop(multi, queue);
        while (loop.step(*shared)) {
        }
    });
}

CurlHttpTransport::~CurlHttpTransport() {
    {
        std::lock_guard lock(shared_->mutex);
        shared_->stopping = true;
        shared_->wake();
    }
    thread_.join();
    std::lock_guard lock(shared_->mutex);
    curl_multi_cleanup(shared_->multi);
    shared_->multi = nullptr;
}

std::shared_ptr<HttpTask> CurlHttpTransport::send(HttpRequest request, Completion completion) {
    auto transfer = std::make_unique<Transfer>();
    transfer->request = std::move(request);
    transfer->completion = std::move(completion);
    std::uint64_t id = 0;
    {
        std::lock_guard lock(shared_->mutex);
        id = shared_->nextId++;
        transfer->id = id;
        shared_->arrived.push_back(std::move(transfer));
        shared_->wake();
    }
    return std::make_shared<CurlTask>(shared_, id);
}

}  // namespace tb
