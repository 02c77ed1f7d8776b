#include "api/SessionManager.h"

#include "api/XAuthRequestAdapter.h"

namespace tb {

SessionManager::SessionManager(HttpTransport& http, Configuration configuration)
    : http_(http), configuration_(std::move(configuration)) {}

std::shared_ptr<HttpTask> SessionManager::request(HttpRequest request, Completion completion) {
    for (const auto& [name, value] : configuration_.headers) {
        if (!findHeader(request.headers, name)) {
            request.headers.emplace_back(name, value);
        }
    }
    request.timeoutSeconds = configuration_.timeoutIntervalForRequest;
    if (adapter_) {
        request = adapter_->adapt(std::move(request));
    }
    return http_.send(std::move(request), std::move(completion));
}

std::shared_ptr<HttpTask> SessionManager::upload(std::string data,
                                                 HttpRequest request,
                                                 Completion completion) {
    request.body = std::move(data);
    return this->request(std::move(request), std::move(completion));
}

}  // namespace tb
