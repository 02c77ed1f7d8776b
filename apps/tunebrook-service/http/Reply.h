#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace httplib {
struct Response;
}

namespace tb::service {

// Writes JSON answers. Errors carry "message" and "errorcode"; validation errors also
// "errors" (field -> list of texts), the form the client joins into one message.
class Reply {
  public:
    static void json(httplib::Response& response, const nlohmann::json& body, int status = 200);
    static void error(httplib::Response& response,
                      int status,
                      int code,
                      const std::string& message);
    static void fieldErrors(httplib::Response& response,
                            int status,
                            int code,
                            const nlohmann::json& errors,
                            const std::string& message);
};

}  // namespace tb::service
