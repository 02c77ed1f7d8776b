#include "api/AFHTTPRequestOperationManager.h"

#include <nlohmann/json.hpp>

#include "core/URLComponents.h"
#include "platform/Fatal.h"
#include "platform/HttpTransport.h"
#include "platform/MainQueue.h"

namespace tb {

AFHTTPRequestOperationManager::AFHTTPRequestOperationManager(
    std::string baseURL,
    HttpTransport& http,
    MainQueue& queue,
    std::unique_ptr<AFHTTPRequestSerializer> requestSerializer)
    : baseURL_(std::move(baseURL)),
      http_(http),
      queue_(queue),
      requestSerializer_(std::move(requestSerializer)) {}

AFHTTPRequestOperationManager::~AFHTTPRequestOperationManager() = default;

void AFHTTPRequestOperationManager::setRequestSerializer(
    std::unique_ptr<AFHTTPRequestSerializer> serializer) {
    requestSerializer_ = std::move(serializer);
}

std::string AFHTTPRequestOperationManager::resolveURL(const std::string& base,
                                                      const std::string& URLString) {
    if (URLComponents::parse(URLString) || base.empty()) {
        return URLString;
    }
    const std::string baseWithoutQuery = base.substr(0, base.find_first_of("?#"));
    if (URLString.starts_with("/")) {
        const auto parts = URLComponents::parse(baseWithoutQuery);
        return parts ? parts->origin() + URLString : URLString;
    }
    return baseWithoutQuery.substr(0, baseWithoutQuery.rfind('/') + 1) + URLString;
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::GET(
    const std::string& URLString,
    const nlohmann::json& parameters,
    Success success,
    Failure failure) {
    return requestOperation("GET", URLString, parameters, std::move(success), std::move(failure));
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::HEAD(
    const std::string& URLString,
    const nlohmann::json& parameters,
    Success success,
    Failure failure) {
    return requestOperation("HEAD", URLString, parameters, std::move(success), std::move(failure));
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::POST(
    const std::string& URLString,
    const nlohmann::json& parameters,
    Success success,
    Failure failure) {
    return requestOperation("POST", URLString, parameters, std::move(success), std::move(failure));
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::POST(
    const std::string& URLString,
    const nlohmann::json& parameters,
    const AFHTTPRequestSerializer::ConstructingBodyBlock& constructingBodyWithBlock,
    Success success,
    Failure failure) {
    Error error;
    auto request = requestSerializer_->multipartFormRequestWithMethod(
        "POST", resolveURL(baseURL_, URLString), parameters, constructingBodyWithBlock, &error);
    return start(std::move(request), error, std::move(success), std::move(failure));
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::PUT(
    const std::string& URLString,
    const nlohmann::json& parameters,
    Success success,
    Failure failure) {
    return requestOperation("PUT", URLString, parameters, std::move(success), std::move(failure));
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::PATCH(
    const std::string& URLString,
    const nlohmann::json& parameters,
    Success success,
    Failure failure) {
    return requestOperation("PATCH", URLString, parameters, std::move(success), std::move(failure));
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::DELETE(
    const std::string& URLString,
    const nlohmann::json& parameters,
    Success success,
    Failure failure) {
    return requestOperation("DELETE", URLString, parameters, std::move(success),
                            std::move(failure));
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::performMethod(
    const std::string& method,
    const std::string& URLString,
    const nlohmann::json& parameters,
    Success success,
    Failure failure) {
    using Operation = OperationPtr (AFHTTPRequestOperationManager::*)(
        const std::string&, const nlohmann::json&, Success, Failure);
    static constexpr std::pair<const char*, Operation> kOperations[] = {
        {"GET", &AFHTTPRequestOperationManager::GET},
        {"HEAD", &AFHTTPRequestOperationManager::HEAD},
        {"POST", &AFHTTPRequestOperationManager::POST},
        {"PUT", &AFHTTPRequestOperationManager::PUT},
        {"PATCH", &AFHTTPRequestOperationManager::PATCH},
        {"DELETE", &AFHTTPRequestOperationManager::DELETE},
    };
    for (const auto& [name, operation] : kOperations) {
        if (method == name) {
            return (this->*operation)(URLString, parameters, std::move(success),
                                      std::move(failure));
        }
    }
    TB_FATAL("unrecognized selector " + method + ":parameters:success:failure:");
}

AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::requestOperation(
    const std::string& method,
    const std::string& URLString,
    const nlohmann::json& parameters,
    Success success,
    Failure failure) {
    Error error;
    auto request = requestSerializer_->requestWithMethod(method, resolveURL(baseURL_, URLString),
                                                         parameters, &error);
    return start(std::move(request), error, std::move(success), std::move(failure));
}

// Sends the request; a request that could not be built fails on the main queue all the same,
// so callers see one way of answering.
AFHTTPRequestOperationManager::OperationPtr AFHTTPRequestOperationManager::start(
    std::optional<HttpRequest> request,
    const Error& buildError,
    Success success,
    Failure failure) {
    auto operation = std::make_shared<AFHTTPRequestOperation>(request.value_or(HttpRequest{}));
    auto answer = [operation, success = std::move(success), failure = std::move(failure)] {
        if (!operation->error()) {
            if (success) {
                success(*operation, operation->responseObject());
            }
        } else if (failure) {
            failure(*operation, *operation->error());
        }
    };
    if (!request) {
        operation->failWith(buildError);
        queue_.post(std::move(answer));
        return operation;
    }
    ++*inFlight_;
    operation->setTask(
        http_.send(*request, [operation, answer, inFlight = inFlight_](HttpResult result) {
            --*inFlight;
            operation->finishWith(std::move(result));
            answer();
        }));
    return operation;
}

}  // namespace tb
