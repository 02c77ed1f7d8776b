#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/HttpTransport.h"

namespace tb {
class MainQueue;
}

namespace tb::test {

// A scripted HTTP transport. Every request is recorded. A request is answered by the first
// matching rule added with `on()`, or else stays pending until the test answers it with
// `respond()`/`fail()`. Answers arrive through the main queue, as the real transport's do.
class FakeHttpTransport final : public HttpTransport {
  public:
    struct Sent {
        HttpRequest request;
        Completion completion;
        bool answered = false;
        bool cancelled = false;
    };

    using Matcher = std::function<bool(const HttpRequest&)>;

    explicit FakeHttpTransport(MainQueue& queue);

    std::shared_ptr<HttpTask> send(HttpRequest request, Completion completion) override;

    // Answers every later request whose method and URL match (the URL up to "?" must end
    // with `urlSuffix`) with this status and body. Rules added later win.
    void on(const std::string& method, const std::string& urlSuffix, int status, std::string body);
    void on(Matcher matcher, std::function<HttpResult(const HttpRequest&)> answer);

    // Answers the pending request number `index` (0 = the first one sent).
    void respond(std::size_t index, int status, std::string body, HttpHeaders headers = {});
    void fail(std::size_t index, std::int64_t urlErrorCode);
    // The oldest request not yet answered, if any.
    std::optional<std::size_t> firstPending() const;

    const std::vector<std::shared_ptr<Sent>>& sent() const { return sent_; }
    const HttpRequest& request(std::size_t index) const { return sent_.at(index)->request; }
    std::size_t count() const { return sent_.size(); }

  private:
    struct Rule {
        Matcher matcher;
        std::function<HttpResult(const HttpRequest&)> answer;
    };

    void deliver(const std::shared_ptr<Sent>& sent, HttpResult result);

    MainQueue& queue_;
    std::vector<std::shared_ptr<Sent>> sent_;
    std::deque<Rule> rules_;
};

// Parses "a=1&b=x%20y" into ordered pairs, decoding %XX and "+" as space.
std::vector<std::pair<std::string, std::string>> parseFormBody(const std::string& body);

}  // namespace tb::test
