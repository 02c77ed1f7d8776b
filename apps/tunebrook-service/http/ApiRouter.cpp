#include "tunebrook-service/http/ApiRouter.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tunebrook-service/auth/RequestAuthenticator.h"
#include "tunebrook-service/core/PercentCodec.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/http/RequestBody.h"
#include "tunebrook-service/state/EventLog.h"

namespace tb::service {

namespace {

// Longer paths than any route can match are refused before a pattern sees them.
constexpr size_t kMaxPathLength = 512;

bool contains(const std::string& haystack, const char* needle) {
    return haystack.find(needle) != std::string::npos;
}

std::string lower(std::string text) {
    for (auto& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

}  // namespace

void ApiRouter::add(const std::string& method,
                    const std::string& pattern,
                    Access access,
                    Handler handler) {
    routes_.push_back({method, std::regex(pattern), access, std::move(handler)});
}

void ApiRouter::dispatch(const httplib::Request& request,
                         httplib::Response& response,
                         const RequestBody& requestBody) {
    double now = now_();
    std::string target = request.target;
    size_t question = target.find('?');
    std::string rawPath = target.substr(0, question);
    std::string rawQuery = question == std::string::npos ? "" : target.substr(question + 1);
    std::string base = kBasePath;
    if (rawPath.compare(0, base.size(), base) != 0 || rawPath.size() > kMaxPathLength) {
        Reply::error(response, 404, kNotFound, "Not found");
        return;
    }
    auto relative = PercentCodec::decode(rawPath.substr(base.size()));
    auto query = FormParams::parse(rawQuery);
    std::string contentType = lower(request.get_header_value("Content-Type"));
    bool urlEncoded = contains(contentType, "application/x-www-form-urlencoded");
    std::optional<std::vector<FormParam>> body = std::vector<FormParam>();
    if (urlEncoded) {
        body = FormParams::parse(requestBody.text);
    } else if (requestBody.multipart) {
        body = requestBody.fields;  // text fields only: files are not signed
    }
    if (!relative || !query || !body) {
        Reply::error(response, 400, kBadRequest, "Malformed request");
        return;
    }

    AuthRequest auth;
    auth.method = request.method;
    auth.host = request.has_header("Host") ? request.get_header_value("Host") : defaultHost_;
    auth.rawPath = rawPath;
    auth.queryParams = *query;
    auth.bodyParams = *body;
    auth.urlEncodedBody = urlEncoded && !requestBody.text.empty();
    auth.authorization = request.get_header_value("Authorization");
    AuthOutcome outcome = authenticator_.authenticate(auth, now);
    if (!outcome.ok) {
        events_.record("auth_refused", std::nullopt,
                       {{"method", request.method},
                        {"path", *relative},
                        {"errorcode", outcome.errorCode},
                        {"message", outcome.message}},
                       now);
        Reply::error(response, outcome.status, outcome.errorCode, outcome.message);
        return;
    }

    bool pathKnown = false;
    for (const auto& route : routes_) {
        std::smatch match;
        if (!std::regex_match(*relative, match, route.pattern)) {
            continue;
        }
        pathKnown = true;
        if (route.method != request.method) {
            continue;
        }
        if (route.access == Access::user && !outcome.accountId) {
            Reply::error(response, 401, kTokenRequired, "Authentication required");
            return;
        }
        ApiCall call{request, response, requestBody, {}, *query, outcome.accountId, now};
        call.params.insert(call.params.end(), body->begin(), body->end());
        for (size_t i = 1; i < match.size(); ++i) {
            call.captures.push_back(match[i].str());
        }
        route.handler(call);
        // Every accepted call, with the account its token named (none without a token), so
        // that a test can tell which requests carried the listener's token and how each ended.
        events_.record(
            "request", outcome.accountId,
            {{"method", request.method}, {"path", *relative}, {"status", response.status}}, now);
        return;
    }
    if (pathKnown) {
        Reply::error(response, 405, kMethodNotAllowed, "Method not allowed");
    } else {
        Reply::error(response, 404, kNotFound, "Not found");
    }
}

}  // namespace tb::service
