#include "accounts/TBChooseLoginTypeViewModel.h"

#include <nlohmann/json.hpp>

#include "accounts/TBCredentials.h"
#include "accounts/TBSocialAuthenticationManager.h"
#include "api/TBReachabilityManager.h"
#include "core/TBLocalization.h"
#include "platform/JSON.h"

namespace tb {

namespace {

using Provider = SocialSignIn::Provider;

constexpr const char* kOfflineMessage = "feature_not_available_offline_alert_message";

const char* errorMessageKey(Provider provider) {
    switch (provider) {
        case Provider::facebook:
            return "login_facebook_error_message";
        case Provider::google:
            return "login_google_error_message";
        case Provider::twitter:
            break;
    }
    return "login_twitter_error_message";
}

const char* authenticationType(Provider provider) {
    switch (provider) {
        case Provider::facebook:
            return "Facebook";
        case Provider::google:
            return "Google";
        case Provider::twitter:
            break;
    }
    return "Twitter";
}

TBLoginExtra valuesOf(const SocialSignIn::Token& token) {
    TBLoginExtra values{{"socialToken", token.socialToken}};
    if (token.socialId) {
        values["socialId"] = *token.socialId;
    }
    if (token.socialSecret) {
        values["socialSecret"] = *token.socialSecret;
    }
    if (token.socialEmail) {
        values["socialEmail"] = *token.socialEmail;
    }
    return values;
}

std::string valueOf(const TBLoginExtra& values, const char* key) {
    const auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
}

}  // namespace

TBChooseLoginTypeViewModel::TBChooseLoginTypeViewModel(Collaborators collaborators, int source)
    : socialAuthenticationManager_(collaborators.socialAuthenticationManager),
      userManager_(collaborators.userManager),
      credentials_(collaborators.credentials),
      reachability_(collaborators.reachability),
      analytics_(std::move(collaborators.analytics)),
      source_(source) {}

void TBChooseLoginTypeViewModel::fail(const std::string& messageKey) const {
    if (authenticationFailure) {
        authenticationFailure(TBLocalization::localizedString(messageKey), {});
    }
}

void TBChooseLoginTypeViewModel::authenticate(Provider provider) {
    if (reachability_.isOffline()) {
        fail(kOfflineMessage);
        return;
    }
    std::weak_ptr<bool> alive = alive_;
    socialAuthenticationManager_.authenticate(
        provider,
        [this, alive, provider](const SocialSignIn::Token& token) {
            if (!alive.expired()) {
                loginWithSocial(provider, valuesOf(token));
            }
        },
        [this, alive, provider](const std::optional<Error>&) {
            if (!alive.expired()) {
                fail(errorMessageKey(provider));
            }
        },
        nullptr);
}

void TBChooseLoginTypeViewModel::loginWithSocial(Provider provider, const TBLoginExtra& values) {
    if (reachability_.isOffline()) {
        fail(kOfflineMessage);
        return;
    }
    std::weak_ptr<bool> alive = alive_;
    auto success = [this, alive, provider] {
        if (!alive.expired()) {
            loginSucceeded(provider);
        }
    };
    auto failure = [this, alive](int, const std::string& message, const TBLoginExtra& extra) {
        if (alive.expired()) {
            return;
        }
        const auto taken = extra.find("socialEmail");
        if (taken != extra.end() && socialLoginEmailAlreadyExists) {
            socialLoginEmailAlreadyExists(taken->second);
        } else if (authenticationFailure) {
            authenticationFailure(message, extra);
        }
    };
    auto timeout = [this, alive, provider] {
        if (!alive.expired()) {
            fail(errorMessageKey(provider));
        }
    };
    const auto email =
        values.count("socialEmail") ? std::optional(valueOf(values, "socialEmail")) : std::nullopt;
    const auto token = valueOf(values, "socialToken");
    switch (provider) {
        case Provider::facebook:
            userManager_.loginWithFacebookId(valueOf(values, "socialId"), token, email, false,
                                             success, failure, timeout);
            return;
        case Provider::google:
            userManager_.loginWithGoogleIdToken(token, email, false, success, failure, timeout);
            return;
        case Provider::twitter:
            userManager_.loginWithTwitterToken(token, valueOf(values, "socialSecret"), email, false,
                                               success, failure, timeout);
            return;
    }
}

void TBChooseLoginTypeViewModel::loginSucceeded(Provider provider) const {
    if (analytics_) {
        const bool created =
            JSON(nlohmann::json(credentials_.registeredViaSocial().value_or(""))).boolValue();
        analytics_(created, source_, authenticationType(provider));
    }
    if (authenticationSuccess) {
        authenticationSuccess();
    }
}

void TBChooseLoginTypeViewModel::checkEmailExistence(const std::string& email) {
    if (email.empty()) {
        fail("authentication_validation_email_empty");
        return;
    }
    if (reachability_.isOffline()) {
        fail(kOfflineMessage);
        return;
    }
    std::weak_ptr<bool> alive = alive_;
    userManager_.checkExistenceOfEmail(
        email, "",
        [this, alive](bool taken) {
            if (!alive.expired() && emailExistenceCheckSuccess) {
                emailExistenceCheckSuccess(taken);
            }
        },
        [this, alive](const TBFailureInfo&) {
            if (!alive.expired()) {
                fail("generic_api_error");
            }
        });
}

}  // namespace tb
