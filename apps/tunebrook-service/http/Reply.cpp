#include "tunebrook-service/http/Reply.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

namespace tb::service {

void Reply::json(httplib::Response& response, const nlohmann::json& body, int status) {
    response.status = status;
    // Replacement of invalid UTF-8 keeps a dump from throwing on odd stored text.
    response.set_content(body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace),
                         "application/json");
}

void Reply::error(httplib::Response& response, int status, int code, const std::string& message) {
    json(response, {{"message", message}, {"errorcode", code}}, status);
}

void Reply::fieldErrors(httplib::Response& response,
                        int status,
                        int code,
                        const nlohmann::json& errors,
                        const std::string& message) {
    json(response, {{"message", message}, {"errorcode", code}, {"errors", errors}}, status);
}

}  // namespace tb::service
