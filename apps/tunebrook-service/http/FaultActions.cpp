#include "tunebrook-service/http/FaultActions.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tunebrook-service/http/ConnectionProbe.h"
#include "tunebrook-service/http/FaultInjector.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

namespace {

// The rule of the request this thread is handling; set before routing, cleared after.
thread_local std::optional<FaultRule> pending;

std::string pathOf(const httplib::Request& request) {
    return request.target.substr(0, request.target.find('?'));
}

void resetConnection(const httplib::Request& request, httplib::Response& response) {
    int fd = ConnectionProbe::find(request.local_port, request.remote_port);
    if (fd >= 0) {
        ConnectionProbe::reset(fd);
    }
    response.status = 500;
    response.set_header("Connection", "close");
}

// Holds the request until the client gives up, the longest wait passes, or the server
// stops; then the connection is reset without an answer.
void hang(FaultInjector& faults,
          const FaultRule& rule,
          const httplib::Request& request,
          httplib::Response& response) {
    int fd = ConnectionProbe::find(request.local_port, request.remote_port);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(rule.maxMs);
    while (std::chrono::steady_clock::now() < deadline) {
        if (fd >= 0 && ConnectionProbe::peerClosed(fd)) {
            break;
        }
        if (!faults.sleepFor(std::chrono::milliseconds(50))) {
            break;
        }
    }
    resetConnection(request, response);
}

// Hands out what `inner` provides up to `limit` bytes, and from there on fails, which cuts
// the connection with fewer bytes than announced; with `chunk` set, it hands out that many
// bytes at a time and pauses in between.
httplib::ContentProvider cutOrSlow(httplib::ContentProvider inner,
                                   size_t limit,
                                   size_t chunk,
                                   int intervalMs,
                                   FaultInjector& faults) {
    return [inner, limit, chunk, intervalMs, &faults](size_t offset, size_t length,
                                                      httplib::DataSink& sink) {
        if (offset >= limit) {
            return false;
        }
        if (chunk != 0 && offset > 0 && !faults.sleepFor(std::chrono::milliseconds(intervalMs))) {
            return false;
        }
        size_t count = std::min({length, limit - offset, chunk == 0 ? length : chunk});
        return inner(offset, count, sink);
    };
}

httplib::ContentProvider fromBody(std::shared_ptr<std::string> body) {
    return [body](size_t offset, size_t length, httplib::DataSink& sink) {
        return sink.write(body->data() + offset, length);
    };
}

}  // namespace

bool FaultActions::before(FaultInjector& faults,
                          const httplib::Request& request,
                          httplib::Response& response) {
    pending.reset();
    auto rule = faults.take(request.method, pathOf(request));
    if (!rule) {
        return false;
    }
    if (rule->delayMs > 0 && !faults.sleepFor(std::chrono::milliseconds(rule->delayMs))) {
        resetConnection(request, response);
        return true;
    }
    switch (rule->action) {
        case FaultRule::Action::reset:
            resetConnection(request, response);
            return true;
        case FaultRule::Action::hang:
            hang(faults, *rule, request, response);
            return true;
        case FaultRule::Action::delay:
            return false;
        default:
            pending = rule;
            return false;
    }
}

bool FaultActions::answerInstead(httplib::Response& response) {
    if (!pending || pending->action != FaultRule::Action::status) {
        return false;
    }
    if (pending->body.empty()) {
        Reply::error(response, pending->status, pending->status, "Injected failure");
    } else {
        response.status = pending->status;
        response.set_content(pending->body, "application/json");
    }
    return true;
}

void FaultActions::after(FaultInjector& faults,
                         const httplib::Request& request,
                         httplib::Response& response) {
    std::optional<FaultRule> rule = std::move(pending);
    pending.reset();
    if (!rule || request.method == "HEAD" ||
        (rule->action != FaultRule::Action::truncate && rule->action != FaultRule::Action::drip)) {
        return;
    }
    bool truncate = rule->action == FaultRule::Action::truncate;
    size_t chunk = truncate ? 0 : static_cast<size_t>(rule->chunkBytes);
    if (!response.body.empty()) {
        // The body becomes a provider, so that it can be cut or slowed like a file.
        auto body = std::make_shared<std::string>(std::move(response.body));
        response.body.clear();
        std::string type = response.get_header_value("Content-Type");
        response.headers.erase("Content-Type");
        // The announced length stays the whole body's: that is what makes a cut body
        // detectable as one.
        if (!response.has_header("Content-Length")) {
            response.set_header("Content-Length", std::to_string(body->size()));
        }
        response.set_content_provider(body->size(), type, fromBody(body));
    }
    if (!response.content_provider_ || response.content_length_ == 0) {
        return;
    }
    size_t size = response.content_length_;
    size_t limit = !truncate          ? size
                   : rule->bytes >= 0 ? std::min(size, static_cast<size_t>(rule->bytes))
                                      : size * static_cast<size_t>(rule->percent) / 100;
    response.content_provider_ =
        cutOrSlow(response.content_provider_, limit, chunk, rule->intervalMs, faults);
}

}  // namespace tb::service
