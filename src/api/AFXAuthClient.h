#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "api/AFHTTPRequestOperationManager.h"
#include "api/AFXAuthRequestSerializer.h"
#include "api/AFXAuthToken.h"

namespace tb {

class Clock;
class HttpTransport;
class MainQueue;
class RandomSource;

// A signed client of the service: a request manager whose serializer signs with this
// client's token, plus the xAuth login that obtains the token.
//
// requestSerializationType 0 signs form requests (AFXAuthRequestSerializer), 1 signs JSON
// requests (AFXAuthJSONRequestSerializer); any other value leaves a plain, unsigned form
// serializer. Every request carries "X-Application-Version" and "X-Application-Platform".
class AFXAuthClient final : public AFHTTPRequestOperationManager,
                            public AFXAuthRequestSerializerTokenProvider {
  public:
    // What a client runs on.
    struct Environment {
        HttpTransport& http;
        MainQueue& queue;
        RandomSource& random;
        Clock& clock;
        std::string appVersion;
        // Shows the listener that the device seems to be offline (the offline toast).
        std::function<void()> showOfflineToast;
    };

    using AuthorizeSuccess = std::function<void(const nlohmann::json& responseObject)>;
    using AuthorizeFailure =
        std::function<void(const nlohmann::json& responseObject, int statusCode)>;
    using TimeoutBlock = std::function<void()>;

    static constexpr double kDefaultTimeout = 25.0;
    static constexpr double kAuthorizeTimeout = 30.0;

    AFXAuthClient(const std::string& baseURL,
                  const std::string& key,
                  const std::string& secret,
                  int requestSerializationType,
                  Environment environment);
    ~AFXAuthClient() override;

    void resetTimeout();
    void setCustomTimeout(double seconds);

    const std::optional<AFXAuthToken>& token() const override { return token_; }
    void setToken(std::optional<AFXAuthToken> token) { token_ = std::move(token); }
    void setToken(const std::string& token,
                  const std::string& tokenSecret,
                  std::int64_t tokenExpiration);

    // The last login attempt's credentials.
    const std::string& username() const { return username_; }
    const std::string& password() const { return password_; }

    // Logs in with "x_auth_mode" ("client_auth" unless given), "x_auth_password" and
    // "x_auth_username"; remembers username and password.
    OperationPtr authorizeUsingXAuthWithAccessTokenPath(const std::string& accessTokenPath,
                                                        const std::string& accessMethod,
                                                        const std::string& username,
                                                        const std::string& password,
                                                        AuthorizeSuccess success,
                                                        AuthorizeFailure failure);
    OperationPtr authorizeUsingXAuthWithAccessTokenPath(const std::string& accessTokenPath,
                                                        const std::string& accessMethod,
                                                        const std::string& username,
                                                        const std::string& password,
                                                        const std::string& mode,
                                                        AuthorizeSuccess success,
                                                        AuthorizeFailure failure);

    // Logs in with free-form parameters. A success stores the token of the answer on this
    // client, then calls `success` with the answer. With `timeout` given, the request gets
    // 30 seconds and a time-out calls only `timeout`; without it a time-out shows the
    // offline toast. Any other failure calls `failure` with the parsed answer and the
    // status (0 without a response). Every answer puts the default time-out back.
    OperationPtr authorizeUsingXAuthWithAccessTokenPath(const std::string& accessTokenPath,
                                                        const std::string& accessMethod,
                                                        const nlohmann::json& parameters,
                                                        AuthorizeSuccess success,
                                                        AuthorizeFailure failure,
                                                        TimeoutBlock timeout);

  private:
    void answerFailure(const AFHTTPRequestOperation& operation,
                       const Error& error,
                       const AuthorizeFailure& failure,
                       const TimeoutBlock& timeout) const;

    std::function<void()> showOfflineToast_;
    std::optional<AFXAuthToken> token_;
    std::string username_;
    std::string password_;
    // Answers that arrive after the client is gone find this expired and do nothing.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tb
