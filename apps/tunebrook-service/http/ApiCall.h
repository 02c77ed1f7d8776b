#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tunebrook-service/http/FormParams.h"
#include "tunebrook-service/http/RequestBody.h"

namespace httplib {
struct Request;
struct Response;
}  // namespace httplib

namespace tb::service {

// One signed API request after its signature was accepted: the parts of the path the route
// captured, the parameters from query and body, and the account of the token if any.
struct ApiCall {
    const httplib::Request& request;
    httplib::Response& response;
    const RequestBody& body;
    std::vector<std::string> captures;
    std::vector<FormParam> params;
    std::optional<int64_t> accountId;
    double now = 0;

    std::optional<std::string> param(std::string_view name) const {
        return FormParams::find(params, name);
    }
    const std::string& capture(size_t index) const { return captures.at(index); }
};

}  // namespace tb::service
