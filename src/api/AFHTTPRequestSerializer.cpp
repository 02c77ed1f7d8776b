#include "api/AFHTTPRequestSerializer.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>

#include <nlohmann/json.hpp>

#include "api/AFMultipartFormData.h"
#include "api/FormParameters.h"
#include "core/URLComponents.h"
#include "platform/RandomSource.h"

namespace tb {

namespace {

bool isHex(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

// An absolute URL with a host, written only with characters a URL may carry and with
// well-formed escapes; anything else is refused rather than sent somewhere unexpected.
bool isUsableURL(const std::string& url) {
    for (std::size_t i = 0; i < url.size(); ++i) {
        const auto c = static_cast<unsigned char>(url[i]);
        if (c <= 0x20 || c >= 0x7F ||
            std::string_view("\"<>\\^`{|}").find(url[i]) != std::string_view::npos) {
            return false;
        }
        if (c == '%' && (i + 2 >= url.size() || !isHex(url[i + 1]) || !isHex(url[i + 2]))) {
            return false;
        }
    }
    const auto parts = URLComponents::parse(url);
    return parts && !parts->host.empty();
}

std::string multipartBoundary(RandomSource& random) {
    const std::uint32_t high = random.uniform(0xFFFFFFFFu);
    const std::uint32_t low = random.uniform(0xFFFFFFFFu);
    char boundary[32];
    std::snprintf(boundary, sizeof boundary, "Boundary+%08X%08X", high, low);
    return boundary;
}

}  // namespace

AFHTTPRequestSerializer::AFHTTPRequestSerializer(RandomSource& random) : random_(random) {}

AFHTTPRequestSerializer::~AFHTTPRequestSerializer() = default;

void AFHTTPRequestSerializer::setValueForHTTPHeaderField(const std::string& value,
                                                         const std::string& field) {
    setHeader(headers_, field, value);
}

bool AFHTTPRequestSerializer::encodesParametersInURI(const std::string& method) const {
    return std::find(methodsInURI_.begin(), methodsInURI_.end(), method) != methodsInURI_.end();
}

std::optional<HttpRequest> AFHTTPRequestSerializer::requestWithMethod(
    const std::string& method,
    const std::string& URLString,
    const nlohmann::json& parameters,
    Error* error) {
    auto request = emptyRequest(method, URLString, error);
    if (!request) {
        return std::nullopt;
    }
    if (!encodesParametersInURI(method)) {
        setBody(*request, parameters);
        return request;
    }
    const std::string query = formQueryString(flattenFormParameters(parameters));
    if (!query.empty()) {
        request->url += (request->url.find('?') == std::string::npos ? "?" : "&") + query;
    }
    return request;
}

std::optional<HttpRequest> AFHTTPRequestSerializer::multipartFormRequestWithMethod(
    const std::string& method,
    const std::string& URLString,
    const nlohmann::json& parameters,
    const ConstructingBodyBlock& constructingBodyWithBlock,
    Error* error) {
    auto request = emptyRequest(method, URLString, error);
    if (!request) {
        return std::nullopt;
    }
    AFMultipartFormData formData(multipartBoundary(random_));
    for (const auto& pair : flattenFormParameters(parameters)) {
        formData.appendPartWithFormData(pair.value.value_or(""), pair.key);
    }
    if (constructingBodyWithBlock) {
        constructingBodyWithBlock(formData);
    }
    setHeader(request->headers, "Content-Type", formData.contentType());
    request->body = formData.body();
    return request;
}

void AFHTTPRequestSerializer::setBody(HttpRequest& request,
                                      const nlohmann::json& parameters) const {
    if (parameters.is_null()) {
        return;
    }
    if (!findHeader(request.headers, "Content-Type")) {
        request.headers.emplace_back("Content-Type",
                                     "application/x-www-form-urlencoded; charset=utf-8");
    }
    request.body = formQueryString(flattenFormParameters(parameters));
}

std::optional<HttpRequest> AFHTTPRequestSerializer::emptyRequest(const std::string& method,
                                                                 const std::string& URLString,
                                                                 Error* error) const {
    if (!isUsableURL(URLString)) {
        if (error != nullptr) {
            *error = Error{URLError::kDomain,
                           URLError::kBadURL,
                           "unsupported URL",
                           {{"NSErrorFailingURLStringKey", URLString}}};
        }
        return std::nullopt;
    }
    HttpRequest request;
    request.method = method;
    request.url = URLString;
    request.headers = headers_;
    request.timeoutSeconds = timeoutInterval_;
    return request;
}

}  // namespace tb
