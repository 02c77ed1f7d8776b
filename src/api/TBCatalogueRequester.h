#pragma once

#include <functional>
#include <memory>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "api/TBCatalogueBlocks.h"

namespace tb {

class AFHTTPRequestOperation;
class AFXAuthClient;
class ErrorReporter;
class TBReachabilityManager;
class TBSessionGateHolder;
class TBToastUtils;
class TBXAuthClientManager;
struct Error;

// Sends the catalogue's generic calls on the form client and takes their failures the one
// way they all go:
//
//   1. a cancelled call (or a transfer that ended as cancelled, -999): nothing;
//   2. the error goes to the crash reporter with "Reachable" ("true"/"false") and
//      "TimedOut" ("true" for -1001, else "false");
//   3. offline, or timed out: the offline toast (even when the failure block shows a message
//      of its own);
//   4. a 401 while signed in: the crash reporter gets `unauthorized` with "url" and
//      "response", the session refreshes the token, and on success the same call goes out
//      once more with the same answer block and no failure block (a second failure reaches
//      nobody); a failed refresh calls the failure block with the empty dictionary;
//   5. otherwise the failure block gets the failure dictionary.
class TBCatalogueRequester {
  public:
    // Gets the parsed answer of a successful call (null for an empty body).
    using Answer = std::function<void(const nlohmann::json& responseObject)>;

    struct Collaborators {
        TBXAuthClientManager& clients;
        TBReachabilityManager& reachability;
        TBToastUtils& toasts;
        TBSessionGateHolder& session;
        ErrorReporter& errors;
    };

    explicit TBCatalogueRequester(Collaborators with);
    ~TBCatalogueRequester();
    TBCatalogueRequester(const TBCatalogueRequester&) = delete;
    TBCatalogueRequester& operator=(const TBCatalogueRequester&) = delete;

    // `method` is sent by name ("GET", "POST", ...) to the client; `url` is absolute.
    void call(const std::string& method,
              const std::string& url,
              const nlohmann::json& parameters,
              Answer answer,
              TBFailureBlock failure);

  private:
    struct Call;

    void send(const std::shared_ptr<const Call>& call, bool mayRefresh);
    void fail(const std::shared_ptr<const Call>& call,
              const AFHTTPRequestOperation& operation,
              const Error& error);
    void refreshAndRepeat(const std::shared_ptr<const Call>& call,
                          const AFHTTPRequestOperation& operation);
    AFXAuthClient& client();

    Collaborators with_;
    // Answers that arrive after this object is gone find this expired and do nothing.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tb
