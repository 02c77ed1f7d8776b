#include "api/JSONResponseSerializer.h"

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

JSONResponseSerializer::Serialized JSONResponseSerializer::serialize(const HttpRequest& request,
                                                                     const HttpResult& result) {
    Serialized serialized;
    if (result.response) {
        serialized.json = parsedBody(result.response->body);
    }
    if (result.error) {
        serialized.error = result.error;
    } else if (!result.response) {
        serialized.error = responseError(URLError::kBadServerResponse, "no response", request);
    } else if (result.response->statusCode < 200 || result.response->statusCode > 299) {
        serialized.error = responseError(
            URLError::kBadServerResponse,
            "Request failed: status " + std::to_string(result.response->statusCode), request);
    } else if (!serialized.json) {
        serialized.error = responseError(
            URLError::kCannotDecodeContentData,
            "The data couldn't be read because it isn't in the correct format.", request);
    }
    return serialized;
}

}  // namespace tb
