#include "api/AFHTTPRequestOperation.h"

#include <nlohmann/json.hpp>

namespace tb {

namespace {

bool isBlank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

// The body as JSON: blank is null, and text that isn't JSON (or nests deeper than the app
// accepts) gives nothing. The reading is the lenient one, so that a stray byte or an
// overflowing number in one element of a list doesn't fail the whole answer.
std::optional<JSON> parsedBody(const std::string& body) {
    if (isBlank(body)) {
        return JSON(nlohmann::json());
    }
    JSON parsed = JSON::parse(body);
    if (!parsed.exists()) {
        return std::nullopt;
    }
    return parsed;
}

Error responseError(std::int64_t code, std::string message, const HttpRequest& request) {
    return Error{
        URLError::kDomain, code, std::move(message), {{"NSErrorFailingURLStringKey", request.url}}};
}

}  // namespace

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
    response_ = std::move(result.response);
    std::optional<JSON> parsed;
    if (response_) {
        parsed = parsedBody(response_->body);
        responseObject_ = parsed.value_or(JSON());
    }
    if (result.error) {
        error_ = std::move(result.error);
    } else if (!response_) {
        error_ = responseError(URLError::kBadServerResponse, "no response", request_);
    } else if (response_->statusCode < 200 || response_->statusCode > 299) {
        error_ = responseError(URLError::kBadServerResponse,
                               "Request failed: status " + std::to_string(response_->statusCode),
                               request_);
    } else if (!parsed) {
        error_ = responseError(URLError::kCannotDecodeContentData,
                               "The data couldn't be read because it isn't in the correct format.",
                               request_);
    }
}

void AFHTTPRequestOperation::failWith(Error error) {
    finished_ = true;
    task_.reset();
    error_ = std::move(error);
}

}  // namespace tb
