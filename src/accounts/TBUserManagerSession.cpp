// The session of TBUserManager: signing in again with the stored identity, the token
// refresh after a 401, and the signed requests that wait for it.

#include <nlohmann/json.hpp>

#include "accounts/SocialSignIn.h"
#include "accounts/TBCredentials.h"
#include "accounts/TBKeychainManager.h"
#include "accounts/TBUserManager.h"
#include "api/TBFailureInfo.h"
#include "api/TBReachabilityManager.h"
#include "api/TBXAuthClientManager.h"
#include "core/TBConstants.h"
#include "core/TBLocalization.h"
#include "core/TBToastUtils.h"
#include "platform/ErrorReporter.h"
#include "platform/JSON.h"
#include "platform/MainQueue.h"
#include "platform/UIHost.h"

namespace tb {

namespace {

using json = nlohmann::json;

constexpr int kRefusedStatus = 400;
constexpr double kLoginScreenDelay = 1.0;

void fail(const TBLoginFailureBlock& failureBlock, const std::string& messageKey) {
    if (failureBlock) {
        failureBlock(kRefusedStatus, TBLocalization::localizedString(messageKey), {});
    }
}

Error sessionError(std::int64_t code) {
    return Error{TBConstants::TBCrashlyticsErrorCodes().tunebrookErrorDomain, code, "", {}};
}

}  // namespace

// ---- Signing in again -------------------------------------------------------------------

void TBUserManager::checkAutoLoginWithSuccessBlock(TBLoginSuccessBlock successBlock,
                                                   std::function<void()> offlineBlock,
                                                   TBLoginTimeoutBlock timeoutBlock,
                                                   TBLoginFailureBlock failureBlock) {
    if (!credentials_.loggedIn()) {
        fail(failureBlock, "login_error_1037");
        return;
    }
    if (reachability_.isOffline()) {
        if (offlineBlock) {
            offlineBlock();
        }
        return;
    }
    if (credentials_.facebookId()) {
        loginWithFacebook(successBlock, timeoutBlock, failureBlock);
    } else if (credentials_.googleIdToken()) {
        loginWithGoogle(successBlock, timeoutBlock, failureBlock);
    } else if (const auto twitterToken = credentials_.twitterToken(),
               twitterSecret = credentials_.twitterSecret();
               twitterToken && twitterSecret) {
        loginWithTwitterToken(*twitterToken, *twitterSecret, credentials_.socialEmail(), true,
                              std::move(successBlock), std::move(failureBlock),
                              std::move(timeoutBlock));
    } else {
        loginWithEmail(credentials_.userEmail().value_or(""),
                       credentials_.userPassword().value_or(""), true, std::move(successBlock),
                       std::move(failureBlock), std::move(timeoutBlock));
    }
}

// Facebook's own token lives shorter than the service's; an expired one is renewed first.
void TBUserManager::loginWithFacebook(const TBLoginSuccessBlock& successBlock,
                                      const TBLoginTimeoutBlock& timeoutBlock,
                                      const TBLoginFailureBlock& failureBlock) {
    auto login = [this, successBlock, timeoutBlock, failureBlock] {
        const auto current = social_.facebookCurrentAccessToken();
        if (!current || current->socialToken.empty()) {
            fail(failureBlock, "login_error_message_facebook");
            return;
        }
        loginWithFacebookId(credentials_.facebookId().value_or(""), current->socialToken,
                            credentials_.socialEmail(), true, successBlock, failureBlock,
                            timeoutBlock);
    };
    const auto current = social_.facebookCurrentAccessToken();
    if (!current || !current->expired) {
        login();
        return;
    }
    std::weak_ptr<bool> alive = alive_;
    social_.facebookRefreshCurrentAccessToken(
        [alive, login, failureBlock](const std::optional<Error>& error) {
            if (alive.expired()) {
                return;
            }
            if (error) {
                fail(failureBlock, "login_error_message_facebook");
                return;
            }
            login();
        });
}

void TBUserManager::loginWithGoogle(const TBLoginSuccessBlock& successBlock,
                                    const TBLoginTimeoutBlock& timeoutBlock,
                                    const TBLoginFailureBlock& failureBlock) {
    if (!social_.googleHasCurrentUser()) {
        fail(failureBlock, "login_google_error_message");
        return;
    }
    std::weak_ptr<bool> alive = alive_;
    social_.googleGetTokens(
        [this, alive, successBlock, timeoutBlock, failureBlock](
            const std::optional<SocialSignIn::Token>& token, const std::optional<Error>&) {
            if (alive.expired()) {
                return;
            }
            if (!token) {
                fail(failureBlock, "login_google_error_message");
                return;
            }
            loginWithGoogleIdToken(token->socialToken, credentials_.socialEmail(), true,
                                   successBlock, failureBlock, timeoutBlock);
        });
}

void TBUserManager::refreshSocialTokensWithSuccessBlock(TBLoginSuccessBlock successBlock,
                                                        std::function<void()> offlineBlock,
                                                        TBLoginFailureBlock failureBlock) {
    if (reachability_.isOffline()) {
        if (offlineBlock) {
            offlineBlock();
        }
        return;
    }
    const auto facebook = social_.facebookCurrentAccessToken();
    if (credentials_.facebookId() && facebook && facebook->expired) {
        social_.facebookRefreshCurrentAccessToken(
            [successBlock, failureBlock](const std::optional<Error>& error) {
                if (error) {
                    fail(failureBlock, "login_error_message_facebook");
                } else if (successBlock) {
                    successBlock();
                }
            });
        return;
    }
    if (credentials_.googleIdToken()) {
        // The splash goes on at once; the silent sign-in stores its token whenever it ends.
        std::weak_ptr<bool> alive = alive_;
        social_.googleSignInSilently([this, alive](const std::optional<SocialSignIn::Token>& token,
                                                   const std::optional<Error>&) {
            if (!alive.expired() && token && !token->socialToken.empty()) {
                credentials_.keychainManager().setWithString(
                    token->socialToken, TBConstants::TBKeychainKeys().userGoogleIdToken);
            }
        });
    }
    if (successBlock) {
        successBlock();
    }
}

// ---- The token refresh --------------------------------------------------------------------

void TBUserManager::refreshTokenWithSuccess(std::function<void()> success,
                                            std::function<void()> failureBlock) {
    auto call = [](const std::function<void()>& block) {
        if (block) {
            block();
        }
    };
    // A second 401 while a refresh is under way is not queued: it fails at once.
    if (refreshingToken_) {
        call(failureBlock);
        return;
    }
    refreshingToken_ = true;
    std::weak_ptr<bool> alive = alive_;
    auto done = [this, alive] {
        if (!alive.expired()) {
            refreshingToken_ = false;
        }
    };
    checkAutoLoginWithSuccessBlock(
        [done, call, success] {
            done();
            call(success);
        },
        [done, call, failureBlock] {
            done();
            call(failureBlock);
        },
        [done, call, failureBlock] {
            done();
            call(failureBlock);
        },
        [this, alive, done, call, failureBlock](int status, const std::string& message,
                                                const TBLoginExtra&) {
            done();
            call(failureBlock);
            if (!alive.expired()) {
                refreshFailed(status, message);
            }
        });
}

// The service refused the stored identity (4xx): it is no longer good, so the listener is
// signed out and asked to sign in again. Anything else may pass; the listener stays, told
// once per process.
void TBUserManager::refreshFailed(int status, const std::string& message) {
    const auto& codes = TBConstants::TBCrashlyticsErrorCodes();
    const ErrorInfo info{{"response", message}, {"statusCode", std::to_string(status)}};
    if (status >= 400 && status <= 499) {
        credentials_.logout();
        std::weak_ptr<bool> alive = alive_;
        queue_.postAfter(kLoginScreenDelay, [this, alive] {
            if (!alive.expired()) {
                ui_.showLoginScreenWithSource(kLostSessionLoginSource);
            }
        });
        errorReporter_.recordError(sessionError(codes.tokenRefreshFailed400500), info);
        return;
    }
    if (!refreshTokenFailureAlertShown_) {
        refreshTokenFailureAlertShown_ = true;
        showRefreshTokenFailurePopup();
    }
    errorReporter_.recordError(sessionError(codes.tokenRefreshFailed), info);
}

void TBUserManager::showRefreshTokenFailurePopup() {
    ui_.presentAlert(Alert{
        TBLocalization::localizedString("failed_refresh_token_title"),
        TBLocalization::localizedString("failed_refresh_token_message"),
        {AlertAction{TBLocalization::localizedString("failed_refresh_token_button"),
                     AlertAction::Style::Default, nullptr}},
    });
}

// ---- Signed requests ----------------------------------------------------------------------

void TBUserManager::postToService(const std::string& url,
                                  const nlohmann::json& paramaters,
                                  TBJSONSuccess success,
                                  TBFailureBlock failure,
                                  std::function<void()> timeout) {
    std::weak_ptr<bool> alive = alive_;
    clients_.client().POST(
        url, paramaters,
        [success](AFHTTPRequestOperation&, const json& responseObject) {
            if (success) {
                success(JSON(responseObject));
            }
        },
        [this, alive, url, paramaters, success, failure, timeout](AFHTTPRequestOperation& operation,
                                                                  const Error& error) {
            if (alive.expired()) {
                return;
            }
            if (error.code == URLError::kTimedOut) {
                if (timeout) {
                    timeout();
                    return;
                }
                toasts_.showOfflineToast();
            }
            if (operation.statusCode() == 401 && credentials_.loggedIn()) {
                errorReporter_.recordError(
                    sessionError(TBConstants::TBCrashlyticsErrorCodes().unauthorized),
                    {{"url", url}, {"response", operation.responseString()}});
                auto info = TBFailureInfo::of(operation, error);
                refreshTokenWithSuccess(
                    [this, alive, url, paramaters, success, failure, timeout] {
                        if (!alive.expired()) {
                            postToService(url, paramaters, success, failure, timeout);
                        }
                    },
                    [failure, info] {
                        if (failure) {
                            failure(info);
                        }
                    });
                return;
            }
            if (failure) {
                failure(TBFailureInfo::of(operation, error));
            }
        });
}

void TBUserManager::requestToAuthenticatedAPI(const std::string& url,
                                              const std::string& method,
                                              TBJSONSuccess success,
                                              TBFailureBlock failure) {
    sendAuthenticated(url, method, json::object(), std::move(success), std::move(failure));
}

void TBUserManager::requestToAuthenticatedAPI(const std::string& url,
                                              const std::string& method,
                                              const nlohmann::json& parameters,
                                              TBJSONSuccess success,
                                              TBFailureBlock failure) {
    sendAuthenticated(url, method, parameters, std::move(success), std::move(failure));
}

// A 401 parks the request in the one pending slot; the refresh login sends it again, with
// its address and method (not its parameters), once the new token is in place.
void TBUserManager::sendAuthenticated(const std::string& url,
                                      const std::string& method,
                                      const nlohmann::json& parameters,
                                      TBJSONSuccess success,
                                      TBFailureBlock failure) {
    std::weak_ptr<bool> alive = alive_;
    clients_.client().performMethod(
        method, url, parameters,
        [success](AFHTTPRequestOperation& operation, const json& responseObject) {
            if (!success) {
                return;
            }
            success(operation.statusCode() == 204 ? JSON(json(operation.responseString()))
                                                  : JSON(responseObject));
        },
        [this, alive, url, method, success, failure](AFHTTPRequestOperation& operation,
                                                     const Error& error) {
            if (alive.expired()) {
                return;
            }
            const int status = operation.statusCode();
            if (status == 401) {
                pending_ = Pending{url, method, success, failure};
                refreshTokenWithSuccess([] {}, [] {});
                return;
            }
            // Any 2xx is a success, also when its body is not JSON.
            if (status >= 200 && status <= 299) {
                if (success) {
                    success(JSON(json(operation.responseString())));
                }
                return;
            }
            if (failure) {
                failure(TBFailureInfo::of(operation, error));
            }
        });
}

// ---- The catalogue's view of the session ----------------------------------------------------

bool TBUserManager::loggedIn() {
    return credentials_.loggedIn();
}

std::optional<std::string> TBUserManager::userSlug() {
    return credentials_.userSlug();
}

std::vector<ItemPtr> TBUserManager::highlights() {
    return credentials_.highlights();
}

void TBUserManager::refreshToken(std::function<void()> success, std::function<void()> failure) {
    refreshTokenWithSuccess(std::move(success), std::move(failure));
}

}  // namespace tb
