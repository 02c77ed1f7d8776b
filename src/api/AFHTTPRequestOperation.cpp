#include "api/AFHTTPRequestOperation.h"

#include <nlohmann/json.hpp>

#include "api/JSONResponseSerializer.h"

namespace tb {

AFHTTPRequestOperation::AFHTTPRequestOperation(HttpRequest request)
    : request_(std::move(request)) {}

AFHTTPRequestOperation::~AFHTTPRequestOperation() = default;

int AFHTTPRequestOperation::statusCode() const {
    return response_ ? response_->statusCode : 0;
}

std::string AFHTTPRequestOperation::responseString() const {
    return response_ ? response_->body : std::string();
}

const nlohmann::json& AFHTTPRequestOperation::responseObject() const {
    return responseObject_.raw();
}

void AFHTTPRequestOperation::cancel() {
    if (finished_ || cancelled_) {
        return;
    }
    cancelled_ = true;
    if (task_) {
        task_->cancel();
    }
}

void AFHTTPRequestOperation::finishWith(HttpResult result) {
    finished_ = true;
    task_.reset();
    JSONResponseSerializer::Serialized serialized =
        JSONResponseSerializer::serialize(request_, result);
    response_ = std::move(result.response);
    if (response_) {
        responseObject_ = serialized.json.value_or(JSON());
    }
    error_ = std::move(serialized.error);
}

void AFHTTPRequestOperation::failWith(Error error) {
    finished_ = true;
    task_.reset();
    error_ = std::move(error);
}

}  // namespace tb
