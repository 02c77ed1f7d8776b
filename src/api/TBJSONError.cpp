#include "api/TBJSONError.h"

#include <string>

namespace tb {

namespace {

constexpr const char* kErrorDomain = "errorDomain";
constexpr const char* kJSON = "json";
constexpr const char* kRequestMethod = "requestMethod";
constexpr const char* kRequestURL = "requestURL";
constexpr const char* kRequestBody = "requestBody";
constexpr const char* kStatusCode = "statusCode";
constexpr const char* kResponseURL = "responseURL";
constexpr const char* kResponseBody = "responseBody";

const std::string* find(const ErrorInfo& info, const char* key) {
    auto found = info.find(key);
    return found == info.end() ? nullptr : &found->second;
}

std::string text(const ErrorInfo& info, const char* key) {
    const std::string* found = find(info, key);
    return found ? *found : std::string();
}

}  // namespace

Error TBJSONError::asError() const {
    Error carried{kDomain, error.code, error.message, {{kErrorDomain, error.domain}}};
    if (json) {
        carried.userInfo[kJSON] = json->dump();
    }
    if (request) {
        carried.userInfo[kRequestMethod] = request->method;
        carried.userInfo[kRequestURL] = request->url;
        carried.userInfo[kRequestBody] = request->body;
    }
    if (response) {
        carried.userInfo[kStatusCode] = std::to_string(response->statusCode);
        carried.userInfo[kResponseURL] = response->url;
        carried.userInfo[kResponseBody] = response->body;
    }
    return carried;
}

std::optional<TBJSONError> TBJSONError::from(const Error& carried) {
    if (carried.domain != kDomain) {
        return std::nullopt;
    }
    const ErrorInfo& info = carried.userInfo;
    TBJSONError error;
    error.error = Error{text(info, kErrorDomain), carried.code, carried.message, {}};
    if (const std::string* json = find(info, kJSON)) {
        error.json = JSON::parse(*json);
    }
    if (const std::string* url = find(info, kRequestURL)) {
        HttpRequest request;
        request.url = *url;
        request.method = text(info, kRequestMethod);
        request.body = text(info, kRequestBody);
        error.request = std::move(request);
    }
    if (const std::string* status = find(info, kStatusCode)) {
        HttpResponse response;
        response.statusCode = static_cast<int>(JSON::parse(*status).intValue());
        response.url = text(info, kResponseURL);
        response.body = text(info, kResponseBody);
        error.response = std::move(response);
    }
    return error;
}

}  // namespace tb
