#pragma once

#include <optional>

#include "platform/Error.h"
#include "platform/HttpTransport.h"
#include "platform/JSON.h"

namespace tb {

// Why a typed request of the network layer failed: the error, the body read as JSON when it
// could be, the request and the response (when one came). Promises carry it as an Error of
// the domain kDomain (asError); from() reads it back. What travels is what callers read: the
// error's domain, code and text, the JSON, the request's method, address and body, and the
// response's status, address and body (headers stay behind).
struct TBJSONError {
    static constexpr const char* kDomain = "TBJSONError";

    Error error;
    std::optional<JSON> json;
    std::optional<HttpRequest> request;
    std::optional<HttpResponse> response;

    // 0 when no response came.
    int statusCode() const { return response ? response->statusCode : 0; }

    Error asError() const;
    // Nothing for an error of another domain.
    static std::optional<TBJSONError> from(const Error& error);
};

}  // namespace tb
