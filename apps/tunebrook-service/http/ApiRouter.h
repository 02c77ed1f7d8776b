#pragma once

#include <functional>
#include <regex>
#include <string>
#include <vector>

namespace httplib {
struct Request;
struct Response;
}  // namespace httplib

namespace tb::service {

struct ApiCall;
struct RequestBody;
class EventLog;
class RequestAuthenticator;

enum class Access {
    consumer,  // the consumer's signature is enough; a token is used when given
    user,      // a valid token is required
};

// Routes every request under the API base: checks its signature first, then matches the
// path (percent-decoded, relative to the base) against the routes' patterns.
class ApiRouter {
  public:
    using Handler = std::function<void(ApiCall&)>;
    static constexpr const char* kBasePath = "/v1/";

    ApiRouter(RequestAuthenticator& authenticator,
              EventLog& events,
              std::string defaultHost,
              std::function<double()> now)
        : authenticator_(authenticator),
          events_(events),
          defaultHost_(std::move(defaultHost)),
          now_(std::move(now)) {}

    // `pattern` is a regular expression over the whole relative path, e.g. "music/(\d+)/play".
    void add(const std::string& method, const std::string& pattern, Access access, Handler handler);
    void dispatch(const httplib::Request& request,
                  httplib::Response& response,
                  const RequestBody& body);

  private:
    struct Route {
        std::string method;
        std::regex pattern;
        Access access;
        Handler handler;
    };

    RequestAuthenticator& authenticator_;
    EventLog& events_;
    std::string defaultHost_;
    std::function<double()> now_;
    std::vector<Route> routes_;
};

}  // namespace tb::service
