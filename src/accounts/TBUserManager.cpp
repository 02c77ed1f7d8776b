// The logins of TBUserManager. Sign-up and the listener's record are in
// TBUserManagerAccount.cpp, the session's refresh and its signed requests in
// TBUserManagerSession.cpp.

#include "accounts/TBUserManager.h"

#include <nlohmann/json.hpp>

#include "accounts/TBCredentials.h"
#include "api/API.h"
#include "api/TBFailureInfo.h"
#include "api/TBXAuthClientManager.h"
#include "core/TBConstants.h"
#include "core/TBLocalization.h"
#include "platform/ErrorReporter.h"
#include "platform/JSON.h"
#include "platform/SharedInstance.h"

namespace tb {

namespace {

using json = nlohmann::json;

constexpr const char* kAccessTokenPath = "access_token";
constexpr const char* kReportedPassword = "<redacted>";

const TBAPIErrorCodes& apiErrorCodes() {
    return TBConstants::TBAPIErrorCodes();
}

// The parameter as text, if it was sent.
std::optional<std::string> sent(const json& parameters, const char* key) {
    const auto found = parameters.find(key);
    if (found == parameters.end() || !found->is_string()) {
        return std::nullopt;
    }
    return found->get<std::string>();
}

bool empty(const std::string& text) {
    return text.empty();
}

// "description" when it is a non-empty text, else "message".
std::string serviceMessage(const JSON& response) {
    const auto description = response["description"].string();
    if (description && !description->empty()) {
        return *description;
    }
    return response["message"].string().value_or("");
}

// What the screen needs to ask for an email and send the same social login again.
TBLoginExtra socialRetryExtra(const json& parameters) {
    TBLoginExtra extra;
    if (const auto facebookId = sent(parameters, "fb_user_id")) {
        extra["socialId"] = *facebookId;
        extra["socialToken"] = sent(parameters, "fb_token").value_or("");
    } else if (const auto twitterToken = sent(parameters, "t_token")) {
        extra["socialToken"] = *twitterToken;
        extra["socialSecret"] = sent(parameters, "t_secret").value_or("");
    } else if (const auto googleToken = sent(parameters, "g_token")) {
        extra["socialToken"] = *googleToken;
    }
    return extra;
}

}  // namespace

TBUserManager::TBUserManager(Collaborators collaborators)
    : credentials_(collaborators.credentials),
      clients_(collaborators.clients),
      api_(collaborators.api),
      reachability_(collaborators.reachability),
      toasts_(collaborators.toasts),
      errorReporter_(collaborators.errorReporter),
      ui_(collaborators.ui),
      queue_(collaborators.queue),
      sdks_(collaborators.sdks),
      social_(collaborators.social),
      advertisingIdentifier_(std::move(collaborators.advertisingIdentifier)),
      UDID_(std::move(collaborators.UDID)) {}

TBUserManager::~TBUserManager() = default;

TBUserManager& TBUserManager::sharedInstance() {
    return SharedInstance<TBUserManager>::get();
}

void TBUserManager::failWithoutAnswer(const TBLoginFailureBlock& failureBlock) {
    if (failureBlock) {
        failureBlock(0, "", {});
    }
}

// ---- Logins ---------------------------------------------------------------------------

void TBUserManager::loginWithEmail(const std::string& email,
                                   const std::string& password,
                                   bool refreshToken,
                                   TBLoginSuccessBlock successBlock,
                                   TBLoginFailureBlock failureBlock,
                                   TBLoginTimeoutBlock timeoutBlock) {
    const json parameters = {
        {"x_auth_mode", "client_auth"}, {"x_auth_username", email}, {"x_auth_password", password}};
    if (empty(email) || empty(password)) {
        reportEmptyCredentials(
            "Empty username or password during login",
            TBConstants::TBCrashlyticsErrorCodes().emptyUsernamePwLoginCredentials, parameters);
        failWithoutAnswer(failureBlock);
        return;
    }
    loginWithParameters(parameters, refreshToken, std::move(successBlock), std::move(failureBlock),
                        std::move(timeoutBlock));
}

void TBUserManager::loginWithFacebookId(const std::string& facebookId,
                                        const std::string& facebookToken,
                                        const std::optional<std::string>& socialEmail,
                                        bool refreshToken,
                                        TBLoginSuccessBlock successBlock,
                                        TBLoginFailureBlock failureBlock,
                                        TBLoginTimeoutBlock timeoutBlock) {
    json parameters = {{"fb_user_id", facebookId}, {"fb_token", facebookToken}};
    if (socialEmail) {
        parameters["u_auth_email"] = *socialEmail;
    }
    if (empty(facebookId) || empty(facebookToken)) {
        reportEmptyCredentials("Empty facebook id or token during auth",
                               TBConstants::TBCrashlyticsErrorCodes().emptyFacebookToken,
                               parameters);
        failWithoutAnswer(failureBlock);
        return;
    }
    loginWithParameters(parameters, refreshToken, std::move(successBlock), std::move(failureBlock),
                        std::move(timeoutBlock));
}

void TBUserManager::loginWithGoogleIdToken(const std::string& googleIdToken,
                                           const std::optional<std::string>& socialEmail,
                                           bool refreshToken,
                                           TBLoginSuccessBlock successBlock,
                                           TBLoginFailureBlock failureBlock,
                                           TBLoginTimeoutBlock timeoutBlock) {
    json parameters = {{"g_token", googleIdToken}};
    if (socialEmail) {
        parameters["u_auth_email"] = *socialEmail;
    }
    if (empty(googleIdToken)) {
        reportEmptyCredentials("Empty google token during auth",
                               TBConstants::TBCrashlyticsErrorCodes().emptyGoogleToken, parameters);
        failWithoutAnswer(failureBlock);
        return;
    }
    loginWithParameters(parameters, refreshToken, std::move(successBlock), std::move(failureBlock),
                        std::move(timeoutBlock));
}

void TBUserManager::loginWithTwitterToken(const std::string& twitterToken,
                                          const std::string& twitterSecret,
                                          const std::optional<std::string>& socialEmail,
                                          bool refreshToken,
                                          TBLoginSuccessBlock successBlock,
                                          TBLoginFailureBlock failureBlock,
                                          TBLoginTimeoutBlock timeoutBlock) {
    json parameters = {{"t_token", twitterToken}, {"t_secret", twitterSecret}};
    if (socialEmail) {
        parameters["u_auth_email"] = *socialEmail;
    }
    if (empty(twitterToken) || empty(twitterSecret)) {
        reportEmptyCredentials("Empty twitter token or secret during auth",
                               TBConstants::TBCrashlyticsErrorCodes().emptyTwitterToken,
                               parameters);
        failWithoutAnswer(failureBlock);
        return;
    }
    loginWithParameters(parameters, refreshToken, std::move(successBlock), std::move(failureBlock),
                        std::move(timeoutBlock));
}

void TBUserManager::loginWithParameters(const nlohmann::json& parameters,
                                        bool refreshToken,
                                        TBLoginSuccessBlock successBlock,
                                        TBLoginFailureBlock failureBlock,
                                        TBLoginTimeoutBlock timeoutBlock) {
    if (!parameters.is_object() ||
        (!parameters.contains("x_auth_username") && !parameters.contains("fb_user_id") &&
         !parameters.contains("g_token") && !parameters.contains("t_token"))) {
        failWithoutAnswer(failureBlock);
        return;
    }
    json sentParameters = parameters;
    addDeviceFields(sentParameters);

    std::weak_ptr<bool> alive = alive_;
    auto onSuccess = [this, alive, sentParameters, refreshToken, successBlock,
                      failureBlock](const json& responseObject) {
        if (!alive.expired()) {
            loginSucceeded(sentParameters, responseObject, refreshToken, successBlock,
                           failureBlock);
        }
    };
    auto onFailure = [this, alive, sentParameters, failureBlock](const json& responseObject,
                                                                 int status) {
        if (!alive.expired()) {
            loginFailed(sentParameters, responseObject, status, failureBlock);
        }
    };
    // A time-out block is always given, so that the login has its own, longer time-out.
    auto onTimeout = [timeoutBlock = std::move(timeoutBlock)] {
        if (timeoutBlock) {
            timeoutBlock();
        }
    };
    clients_.client().authorizeUsingXAuthWithAccessTokenPath(
        kAccessTokenPath, "POST", sentParameters, std::move(onSuccess), std::move(onFailure),
        std::move(onTimeout));
}

void TBUserManager::addDeviceFields(nlohmann::json& parameters) const {
    parameters["os_type"] = "ios";
    if (advertisingIdentifier_) {
        if (const auto identifier = advertisingIdentifier_()) {
            parameters["advertising_id"] = *identifier;
        }
    }
}

// The token reaches all three request paths before anything else is sent, so that the
// request waiting for it, and the user record, go out signed with it.
void TBUserManager::loginSucceeded(const nlohmann::json& parameters,
                                   const nlohmann::json& responseObject,
                                   bool refreshToken,
                                   const TBLoginSuccessBlock& successBlock,
                                   const TBLoginFailureBlock& failureBlock) {
    const JSON response(responseObject);
    const JSON user = response["user"];
    const auto slug = user["url_slug"].string();
    const auto id = user["id"].string();
    if (!slug || !id) {
        failWithoutAnswer(failureBlock);
        return;
    }
    const auto token = response["oauth_token"].string();
    const auto tokenSecret = response["oauth_token_secret"].string();
    const auto tokenExpiration = response["oauth_token_expiration"].int64Value();
    credentials_.saveToken(token, tokenSecret, tokenExpiration);

    clients_.client().setToken(token.value_or(""), tokenSecret.value_or(""), tokenExpiration);
    clients_.jsonClient().setToken(token.value_or(""), tokenSecret.value_or(""), tokenExpiration);
    if (token && tokenSecret) {
        api_.setCredentialsWithToken(*token, *tokenSecret);
    }

    if (refreshToken && pending_) {
        const auto pending = std::move(pending_);
        pending_.reset();
        requestToAuthenticatedAPI(pending->url, pending->method, pending->success,
                                  pending->failure);
    }

    const auto socialRegistration = response["social_registration"];
    credentials_.saveUserWithEmail(
        sent(parameters, "x_auth_username"), sent(parameters, "x_auth_password"),
        sent(parameters, "u_auth_email"), sent(parameters, "fb_user_id"),
        sent(parameters, "g_token"), sent(parameters, "t_token"), sent(parameters, "t_secret"),
        slug, id, user["screen_name"].string(),
        socialRegistration.exists() && !socialRegistration.isNull()
            ? std::optional<std::string>(socialRegistration.stringValue())
            : std::nullopt);

    getUserData([](const JSON&) {}, [](const TBFailureInfo&) {});

    if (successBlock) {
        successBlock();
    }
}

void TBUserManager::loginFailed(const nlohmann::json& parameters,
                                const nlohmann::json& responseObject,
                                int status,
                                const TBLoginFailureBlock& failureBlock) const {
    const JSON response(responseObject);
    std::string message = serviceMessage(response);
    TBLoginExtra extra;
    // A clock far off makes every signature stale; the service's words would not tell the
    // listener what to fix.
    if (message.find("expired timestamp") != std::string::npos) {
        message = TBLocalization::localizedString("login_error_timestamp");
    }
    const auto errorcode = response["errorcode"].int64Value();
    if (errorcode == apiErrorCodes().loginGenericError) {
        message = TBLocalization::localizedString("login_error_1037");
    } else if (errorcode == apiErrorCodes().socialLoginNoEmail) {
        extra = socialRetryExtra(parameters);
    } else if (errorcode == apiErrorCodes().socialLoginEmailAlreadyTaken) {
        extra["socialEmail"] = sent(parameters, "u_auth_email").value_or("");
    }
    if (message.empty()) {
        message = TBLocalization::localizedString("generic_api_error");
    }
    if (failureBlock) {
        failureBlock(status, message, extra);
    }
}

// The parameters go with the record so that the cause can be told apart; passwords never
// leave the device this way.
void TBUserManager::reportEmptyCredentials(const std::string& text,
                                           std::int64_t code,
                                           const nlohmann::json& parameters) const {
    ErrorInfo info;
    for (const auto& [key, value] : parameters.items()) {
        const bool password = key == "x_auth_password" || key == "password" || key == "password2";
        info[key] = password            ? kReportedPassword
                    : value.is_string() ? value.get<std::string>()
                                        : "";
    }
    errorReporter_.recordError(
        Error{TBConstants::TBCrashlyticsErrorCodes().tunebrookErrorDomain, code, text, {}}, info);
}

}  // namespace tb
