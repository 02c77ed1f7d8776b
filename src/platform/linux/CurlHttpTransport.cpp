#include "platform/linux/CurlHttpTransport.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include "platform/MainQueue.h"
#include "platform/linux/CurlTransfer.h"

namespace tb {

namespace {

// Like the phone platform's default: more requests to one host wait for a free connection.
constexpr long kMaxConnectionsPerHost = 6;

std::once_flag curlGlobalInit;

// What the caller's threads and the network thread share; everything else belongs to the
// network thread alone.
struct Mailbox {
    std::mutex mutex;
    CURLM* multi = nullptr;
    bool stopping = false;
    std::uint64_t nextId = 1;
    std::vector<std::unique_ptr<CurlTransfer>> arrived;
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
        std::vector<std::unique_ptr<CurlTransfer>> arrived;
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
    void start(std::unique_ptr<CurlTransfer> transfer) {
        if (!transfer->configure() || curl_multi_add_handle(multi_, transfer->easy) != CURLM_OK) {
            complete(*transfer, transfer->notStartedResult());
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
        complete(*transfer, transfer->cancelledResult());
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
            CurlTransfer* done = nullptr;
            curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &done);
            const CURLcode code = message->data.result;
            auto found = active_.find(done->id);
            auto transfer = std::move(found->second);
            active_.erase(found);
            curl_multi_remove_handle(multi_, transfer->easy);
            complete(*transfer, transfer->result(code));
        }
    }

    void complete(CurlTransfer& transfer, HttpResult result) {
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
    std::unordered_map<std::uint64_t, std::unique_ptr<CurlTransfer>> active_;
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
    auto transfer = std::make_unique<CurlTransfer>();
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
