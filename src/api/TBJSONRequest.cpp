#include "api/TBJSONRequest.h"

#include <nlohmann/json.hpp>

#include "api/FormParameters.h"
#include "api/JSONResponseSerializer.h"
#include "api/TBJSONError.h"
#include "api/TBSessionManager.h"

namespace tb {

namespace {

bool encodesInURL(const std::string& method) {
    return method == "GET" || method == "HEAD" || method == "DELETE";
}

}  // namespace

HttpRequest TBJSONRequest::encoded(const std::string& method,
                                   const std::string& url,
                                   const nlohmann::json& parameters) {
    HttpRequest request;
    request.method = method;
    request.url = url;
    const std::string query = formQueryString(flattenFormParameters(parameters));
    if (query.empty()) {
        return request;
    }
    if (encodesInURL(method)) {
        request.url += (url.find('?') == std::string::npos ? "?" : "&") + query;
    } else {
        setHeader(request.headers, "Content-Type",
                  "application/x-www-form-urlencoded; charset=utf-8");
        request.body = query;
    }
    return request;
}

Promise<TBJSONResponse> TBJSONRequest::send(TBSessionManager& session,
                                            MainQueue& queue,
                                            const std::string& method,
                                            const std::string& url,
                                            const nlohmann::json& parameters) {
    auto pending = Promise<TBJSONResponse>::pending(queue);
    HttpRequest request = encoded(method, url, parameters);
    session.request(request, [request, resolver = pending.resolver](HttpResult result) {
        JSONResponseSerializer::Serialized serialized =
            JSONResponseSerializer::serialize(request, result);
        if (serialized.error) {
            resolver.reject(
                TBJSONError{*serialized.error, serialized.json, request, result.response}
                    .asError());
            return;
        }
        resolver.fulfill(TBJSONResponse{*serialized.json, request, result.response});
    });
    return pending.promise;
}

}  // namespace tb
