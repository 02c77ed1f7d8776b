#include "api/TBCatalogueRequester.h"

#include <nlohmann/json.hpp>

#include "api/AFXAuthClient.h"
#include "api/TBFailureInfo.h"
#include "api/TBReachabilityManager.h"
#include "api/TBSessionGateHolder.h"
#include "api/TBXAuthClientManager.h"
#include "core/TBConstants.h"
#include "core/TBToastUtils.h"
#include "platform/ErrorReporter.h"

namespace tb {

namespace {

constexpr int kUnauthorizedStatus = 401;

const char* trueOrFalse(bool value) {
    return value ? "true" : "false";
}

}  // namespace

struct TBCatalogueRequester::Call {
    std::string method;
    std::string url;
    nlohmann::json parameters;
    Answer answer;
    TBFailureBlock failure;
};

TBCatalogueRequester::TBCatalogueRequester(Collaborators with) : with_(with) {}

TBCatalogueRequester::~TBCatalogueRequester() = default;

void TBCatalogueRequester::call(const std::string& method,
                                const std::string& url,
                                const nlohmann::json& parameters,
                                Answer answer,
                                TBFailureBlock failure) {
    send(std::make_shared<const Call>(
             Call{method, url, parameters, std::move(answer), std::move(failure)}),
         true);
}

// The repeat after a token refresh goes without a failure block: whatever happens to it,
// the caller hears nothing more.
void TBCatalogueRequester::send(const std::shared_ptr<const Call>& call, bool mayRefresh) {
    const std::weak_ptr<bool> alive = alive_;
    auto success = [alive, call](AFHTTPRequestOperation&, const nlohmann::json& object) {
        if (alive.lock() && call->answer) {
            call->answer(object);
        }
    };
    AFHTTPRequestOperationManager::Failure failure;
    if (mayRefresh) {
        failure = [this, alive, call](AFHTTPRequestOperation& operation, const Error& error) {
            if (alive.lock()) {
                fail(call, operation, error);
            }
        };
    }
    client().performMethod(call->method, call->url, call->parameters, std::move(success),
                           std::move(failure));
}

void TBCatalogueRequester::fail(const std::shared_ptr<const Call>& call,
                                const AFHTTPRequestOperation& operation,
                                const Error& error) {
    if (operation.isCancelled() || error.code == URLError::kCancelled) {
        return;
    }
    const bool offline = with_.reachability.isOffline();
    const bool timedOut = error.code == URLError::kTimedOut;
    with_.errors.recordError(
        error, {{"Reachable", trueOrFalse(!offline)}, {"TimedOut", trueOrFalse(timedOut)}});
    if (offline || timedOut) {
        with_.toasts.showOfflineToast();
    }
    if (operation.statusCode() == kUnauthorizedStatus && with_.session.gate().loggedIn()) {
        refreshAndRepeat(call, operation);
        return;
    }
    if (call->failure) {
        call->failure(TBFailureInfo::of(operation, error));
    }
}

void TBCatalogueRequester::refreshAndRepeat(const std::shared_ptr<const Call>& call,
                                            const AFHTTPRequestOperation& operation) {
    const auto& codes = TBConstants::TBCrashlyticsErrorCodes();
    with_.errors.recordError(Error{codes.tunebrookErrorDomain, codes.unauthorized, "", {}},
                             {{"url", call->url}, {"response", operation.responseString()}});
    const std::weak_ptr<bool> alive = alive_;
    with_.session.gate().refreshToken(
        [this, alive, call] {
            if (alive.lock()) {
                send(call, false);
            }
        },
        [call] {
            if (call->failure) {
                call->failure(TBFailureInfo::emptyDictionary());
            }
        });
}

AFXAuthClient& TBCatalogueRequester::client() {
    return with_.clients.client();
}

}  // namespace tb
