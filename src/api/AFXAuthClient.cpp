#include "api/AFXAuthClient.h"

#include <nlohmann/json.hpp>

#include "api/AFXAuthJSONRequestSerializer.h"
#include "platform/Error.h"

namespace tb {

namespace {

std::unique_ptr<AFHTTPRequestSerializer> serializerFor(int requestSerializationType,
                                                       const std::string& key,
                                                       const std::string& secret,
                                                       AFXAuthClient::Environment& environment) {
    switch (requestSerializationType) {
        case 0:
            return std::make_unique<AFXAuthRequestSerializer>(key, secret, environment.random,
                                                              environment.clock);
        case 1:
            return std::make_unique<AFXAuthJSONRequestSerializer>(key, secret, environment.random,
                                                                  environment.clock);
        default:
            return std::make_unique<AFHTTPRequestSerializer>(environment.random);
    }
}

}  // namespace

AFXAuthClient::AFXAuthClient(const std::string& baseURL,
                             const std::string& key,
                             const std::string& secret,
                             int requestSerializationType,
                             Environment environment)
    : AFHTTPRequestOperationManager(
          baseURL,
          environment.http,
          environment.queue,
          serializerFor(requestSerializationType, key, secret, environment)),
      showOfflineToast_(std::move(environment.showOfflineToast)) {
    if (auto* signing = dynamic_cast<AFXAuthRequestSerializer*>(&requestSerializer())) {
        signing->setTokenProvider(this);
    }
    requestSerializer().setValueForHTTPHeaderField(environment.appVersion, "X-Application-Version");
    requestSerializer().setValueForHTTPHeaderField("ios", "X-Application-Platform");
    resetTimeout();
}

AFXAuthClient::~AFXAuthClient() = default;

void AFXAuthClient::resetTimeout() {
    setCustomTimeout(kDefaultTimeout);
}

void AFXAuthClient::setCustomTimeout(double seconds) {
    requestSerializer().setTimeoutInterval(seconds);
}

void AFXAuthClient::setToken(const std::string& token,
                             const std::string& tokenSecret,
                             std::int64_t tokenExpiration) {
    token_ = AFXAuthToken(token, tokenSecret, tokenExpiration);
}

AFXAuthClient::OperationPtr AFXAuthClient::authorizeUsingXAuthWithAccessTokenPath(
    const std::string& accessTokenPath,
    const std::string& accessMethod,
    const std::string& username,
    const std::string& password,
    AuthorizeSuccess success,
    AuthorizeFailure failure) {
    return authorizeUsingXAuthWithAccessTokenPath(accessTokenPath, accessMethod, username, password,
                                                  "client_auth", std::move(success),
                                                  std::move(failure));
}

AFXAuthClient::OperationPtr AFXAuthClient::authorizeUsingXAuthWithAccessTokenPath(
    const std::string& accessTokenPath,
    const std::string& accessMethod,
    const std::string& username,
    const std::string& password,
    const std::string& mode,
    AuthorizeSuccess success,
    AuthorizeFailure failure) {
    username_ = username;
    password_ = password;
    const nlohmann::json parameters = {
        {"x_auth_mode", mode}, {"x_auth_password", password}, {"x_auth_username", username}};
    return authorizeUsingXAuthWithAccessTokenPath(accessTokenPath, accessMethod, parameters,
                                                  std::move(success), std::move(failure), nullptr);
}

AFXAuthClient::OperationPtr AFXAuthClient::authorizeUsingXAuthWithAccessTokenPath(
    const std::string& accessTokenPath,
    const std::string& accessMethod,
    const nlohmann::json& parameters,
    AuthorizeSuccess success,
    AuthorizeFailure failure,
    TimeoutBlock timeout) {
    if (timeout) {
        setCustomTimeout(kAuthorizeTimeout);
    }
    std::weak_ptr<bool> alive = alive_;
    auto onSuccess = [this, alive, success = std::move(success)](AFHTTPRequestOperation&,
                                                                 const nlohmann::json& answer) {
        if (alive.expired()) {
            return;
        }
        resetTimeout();
        token_ = AFXAuthToken::initWithDict(answer);
        if (success) {
            success(answer);
        }
    };
    auto onFailure = [this, alive, failure = std::move(failure), timeout = std::move(timeout)](
                         AFHTTPRequestOperation& operation, const Error& error) {
        if (alive.expired()) {
            return;
        }
        resetTimeout();
        answerFailure(operation, error, failure, timeout);
    };
    return performMethod(accessMethod, accessTokenPath, parameters, std::move(onSuccess),
                         std::move(onFailure));
}

void AFXAuthClient::answerFailure(const AFHTTPRequestOperation& operation,
                                  const Error& error,
                                  const AuthorizeFailure& failure,
                                  const TimeoutBlock& timeout) const {
    if (error.code == URLError::kTimedOut) {
        if (timeout) {
            timeout();
            return;
        }
        if (showOfflineToast_) {
            showOfflineToast_();
        }
    }
    if (failure) {
        failure(operation.responseObject(), operation.statusCode());
    }
}

}  // namespace tb
