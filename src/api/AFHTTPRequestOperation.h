#pragma once

#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "platform/Error.h"
#include "platform/HttpTransport.h"
#include "platform/JSON.h"

namespace tb {

// One request of a client and, once answered, what came back. The answer is read as JSON
// by JSONResponseSerializer: error() says why it failed, and the response stays readable.
class AFHTTPRequestOperation {
  public:
    explicit AFHTTPRequestOperation(HttpRequest request);
    ~AFHTTPRequestOperation();
    AFHTTPRequestOperation(const AFHTTPRequestOperation&) = delete;
    AFHTTPRequestOperation& operator=(const AFHTTPRequestOperation&) = delete;

    const HttpRequest& request() const { return request_; }
    const std::optional<HttpResponse>& response() const { return response_; }
    // 0 when no response arrived.
    int statusCode() const;
    // The body as text; "" when no response arrived.
    std::string responseString() const;
    // The parsed body; null when there is none or it isn't JSON.
    const nlohmann::json& responseObject() const;
    const std::optional<Error>& error() const { return error_; }

    bool isFinished() const { return finished_; }
    bool isCancelled() const { return cancelled_; }
    // Stops the request; its failure callback still runs, with the -999 error.
    void cancel();

    // For the manager: the transfer under way, and its end.
    void setTask(std::shared_ptr<HttpTask> task) { task_ = std::move(task); }
    void finishWith(HttpResult result);
    void failWith(Error error);

  private:
    HttpRequest request_;
    std::shared_ptr<HttpTask> task_;
    std::optional<HttpResponse> response_;
    JSON responseObject_;  // missing until a response arrives
    std::optional<Error> error_;
    bool finished_ = false;
    bool cancelled_ = false;
};

}  // namespace tb
