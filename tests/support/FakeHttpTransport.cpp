#include "support/FakeHttpTransport.h"

#include <stdexcept>

#include "platform/MainQueue.h"

namespace tb::test {

namespace {

class FakeTask final : public HttpTask {
  public:
    explicit FakeTask(std::function<void()> onCancel) : onCancel_(std::move(onCancel)) {}
    void cancel() override { onCancel_(); }

  private:
    std::function<void()> onCancel_;
};

std::string withoutQuery(const std::string& url) {
    const auto mark = url.find('?');
    return mark == std::string::npos ? url : url.substr(0, mark);
}

bool endsWith(const std::string& text, const std::string& suffix) {
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

std::string formDecode(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+') {
            out += ' ';
        } else if (text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 &&
                   hexValue(text[i + 2]) >= 0) {
            out += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace

FakeHttpTransport::FakeHttpTransport(MainQueue& queue) : queue_(queue) {}

std::shared_ptr<HttpTask> FakeHttpTransport::send(HttpRequest request, Completion completion) {
    auto sent = std::make_shared<Sent>(Sent{std::move(request), std::move(completion)});
    sent_.push_back(sent);
    for (auto rule = rules_.rbegin(); rule != rules_.rend(); ++rule) {
        if (rule->matcher(sent->request)) {
            deliver(sent, rule->answer(sent->request));
            break;
        }
    }
    std::weak_ptr<Sent> weak = sent;
    return std::make_shared<FakeTask>([this, weak] {
        if (auto alive = weak.lock(); alive && !alive->answered) {
            alive->cancelled = true;
            HttpResult result;
            result.error = Error{URLError::kDomain, URLError::kCancelled, "cancelled", {}};
            deliver(alive, std::move(result));
        }
    });
}

void FakeHttpTransport::on(const std::string& method,
                           const std::string& urlSuffix,
                           int status,
                           std::string body) {
    on(
        [method, urlSuffix](const HttpRequest& request) {
            return request.method == method && endsWith(withoutQuery(request.url), urlSuffix);
        },
        [status, body](const HttpRequest& request) {
            HttpResult result;
            result.response =
                HttpResponse{status, {{"Content-Type", "application/json"}}, body, request.url};
            return result;
        });
}

void FakeHttpTransport::on(Matcher matcher, std::function<HttpResult(const HttpRequest&)> answer) {
    rules_.push_back(Rule{std::move(matcher), std::move(answer)});
}

void FakeHttpTransport::respond(std::size_t index,
                                int status,
                                std::string body,
                                HttpHeaders headers) {
    const auto& sent = sent_.at(index);
    HttpResult result;
    result.response = HttpResponse{status, std::move(headers), std::move(body), sent->request.url};
    deliver(sent, std::move(result));
}

void FakeHttpTransport::fail(std::size_t index, std::int64_t urlErrorCode) {
    HttpResult result;
    result.error = Error{URLError::kDomain, urlErrorCode, "transport failure", {}};
    deliver(sent_.at(index), std::move(result));
}

std::optional<std::size_t> FakeHttpTransport::firstPending() const {
    for (std::size_t i = 0; i < sent_.size(); ++i) {
        if (!sent_[i]->answered) {
            return i;
        }
    }
    return std::nullopt;
}

void FakeHttpTransport::deliver(const std::shared_ptr<Sent>& sent, HttpResult result) {
    if (sent->answered) {
        throw std::logic_error("request answered twice: " + sent->request.url);
    }
    sent->answered = true;
    queue_.post([sent, result = std::move(result)]() mutable {
        if (sent->completion) {
            sent->completion(std::move(result));
        }
    });
}

std::vector<std::pair<std::string, std::string>> parseFormBody(const std::string& body) {
    std::vector<std::pair<std::string, std::string>> pairs;
    size_t start = 0;
    while (start <= body.size() && !body.empty()) {
        size_t end = body.find('&', start);
        if (end == std::string::npos) {
            end = body.size();
        }
        const std::string part = body.substr(start, end - start);
        if (!part.empty()) {
            const auto equals = part.find('=');
            if (equals == std::string::npos) {
                pairs.emplace_back(formDecode(part), "");
            } else {
                pairs.emplace_back(formDecode(part.substr(0, equals)),
                                   formDecode(part.substr(equals + 1)));
            }
        }
        start = end + 1;
    }
    return pairs;
}

}  // namespace tb::test
