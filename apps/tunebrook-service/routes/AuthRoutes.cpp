#include "tunebrook-service/routes/AuthRoutes.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/auth/EmailRule.h"
#include "tunebrook-service/auth/PasswordHasher.h"
#include "tunebrook-service/auth/SocialTokens.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/state/NotificationSeeder.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr size_t kMaxNameLength = 65;
constexpr size_t kMinPasswordLength = 8;
constexpr size_t kMaxPasswordLength = 128;

void loginRefused(ApiCall& call, int status, int code, const std::string& message) {
    Reply::json(call.response,
                {{"message", message}, {"description", message}, {"errorcode", code}}, status);
}

// The token answer of every successful login and sign-up.
void grant(ApiCall& call,
           ServiceContext& context,
           const AccountRow& account,
           bool socialRegistration,
           const std::string& method) {
    TokenRecord token =
        context.tokens.issue(account.id, call.now, context.settings.tokenLifetimeSeconds);
    context.events.record("login", account.id,
                          {{"method", method},
                           {"social_registration", socialRegistration},
                           {"os_type", call.param("os_type").value_or("")},
                           {"advertising_id", call.param("advertising_id").value_or("")}},
                          call.now);
    Reply::json(call.response, {{"oauth_token", token.token},
                                {"oauth_token_secret", token.secret},
                                {"oauth_token_expiration", static_cast<int64_t>(token.expires)},
                                {"social_registration", socialRegistration},
                                {"user",
                                 {{"id", std::to_string(account.id)},
                                  {"url_slug", account.slug},
                                  {"screen_name", account.name},
                                  {"name", account.name},
                                  {"email", account.email.value_or("")}}}});
}

void passwordLogin(ApiCall& call, ServiceContext& context) {
    if (call.param("x_auth_mode").value_or("") != "client_auth") {
        loginRefused(call, 400, kLoginGeneric, "Unsupported x_auth_mode");
        return;
    }
    std::string email = call.param("x_auth_username").value_or("");
    std::string password = call.param("x_auth_password").value_or("");
    auto account = EmailRule::valid(email) ? context.accounts.byEmail(email) : std::nullopt;
    auto stored = account ? context.accounts.passwordHash(account->id) : std::nullopt;
    if (!stored || !PasswordHasher::verify(password, *stored)) {
        context.events.record("login_failed", std::nullopt, {{"method", "password"}}, call.now);
        loginRefused(call, 401, kLoginGeneric, "Invalid email or password");
        return;
    }
    grant(call, context, *account, false, "password");
}

void socialLogin(ApiCall& call, ServiceContext& context) {
    SocialIdentity identity;
    auto outcome = SocialTokens::read(call.params, identity);
    if (outcome == SocialTokens::Outcome::none) {
        loginRefused(call, 400, kLoginGeneric, "Missing credentials");
        return;
    }
    if (outcome == SocialTokens::Outcome::invalid) {
        context.events.record("login_failed", std::nullopt, {{"method", identity.provider}},
                              call.now);
        loginRefused(call, 401, kLoginGeneric, "The " + identity.provider + " login failed");
        return;
    }
    if (auto account = context.accounts.bySocial(identity.provider, identity.socialId)) {
        grant(call, context, *account, false, identity.provider);
        return;
    }
    // A new account: it needs an address, from the provider or typed by the listener, and
    // that address must not belong to another account.
    std::string email = identity.providerEmail.value_or(call.param("u_auth_email").value_or(""));
    if (email.empty() || !EmailRule::valid(email)) {
        loginRefused(call, 400, kSocialLoginNoEmail,
                     "An email address is needed to create your account");
        return;
    }
    if (context.accounts.byEmail(email)) {
        loginRefused(call, 400, kSocialLoginEmailTaken,
                     "This email is already used by another account");
        return;
    }
    NewAccount fresh{email.substr(0, email.find('@')), email, std::nullopt, identity.provider,
                     identity.socialId};
    auto account = context.accounts.create(fresh, call.now);
    if (!account) {
        Reply::error(call.response, 500, kServerError, "The account could not be created");
        return;
    }
    NotificationSeeder::seed(context, account->id);
    grant(call, context, *account, true, identity.provider);
}

void registerUser(ApiCall& call, ServiceContext& context) {
    std::string email = call.param("email").value_or("");
    std::string name = call.param("artist_name").value_or("");
    std::string password = call.param("password").value_or("");
    json errors = json::object();
    if (!EmailRule::valid(email)) {
        errors["email"] = {"Please enter a valid email address"};
    } else if (context.accounts.byEmail(email)) {
        errors["email"] = {"This email is already registered"};
    }
    if (name.empty()) {
        errors["artist_name"] = {"Please enter an artist name"};
    } else if (name.size() > kMaxNameLength) {
        errors["artist_name"] = {"The artist name is too long"};
    }
    if (password.size() < kMinPasswordLength || password.size() > kMaxPasswordLength) {
        errors["password"] = {"The password must have 8 to 128 characters"};
    } else if (call.param("password2").value_or("") != password) {
        errors["password2"] = {"The passwords don't match"};
    }
    if (!errors.empty()) {
        Reply::fieldErrors(call.response, 400, kBadRequest, errors, "The account was not created");
        return;
    }
    auto account =
        context.accounts.create({name, email, PasswordHasher::hash(password), "", ""}, call.now);
    if (!account) {
        Reply::error(call.response, 500, kServerError, "The account could not be created");
        return;
    }
    context.events.record("register", account->id, {{"email", *account->email}}, call.now);
    NotificationSeeder::seed(context, account->id);
    grant(call, context, *account, false, "register");
}

}  // namespace

void AuthRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("POST", "access_token", Access::consumer, [&context](ApiCall& call) {
        if (call.param("x_auth_username")) {
            passwordLogin(call, context);
        } else {
            socialLogin(call, context);
        }
    });
    router.add("POST", "user/register", Access::consumer,
               [&context](ApiCall& call) { registerUser(call, context); });
    router.add("GET", "identity_check", Access::consumer, [&context](ApiCall& call) {
        auto email = call.param("email");
        auto slug = call.param("slug");
        if (!email && !slug) {
            Reply::error(call.response, 400, kBadRequest, "Give an email or a slug");
            return;
        }
        bool taken = (email && !email->empty() && context.accounts.byEmail(*email)) ||
                     (slug && !slug->empty() && context.accounts.slugTaken(*slug));
        Reply::json(call.response, {{"taken", taken}});
    });
    router.add("POST", "user/forgot-password", Access::consumer, [&context](ApiCall& call) {
        std::string email = call.param("email").value_or("");
        if (!EmailRule::valid(email)) {
            Reply::fieldErrors(call.response, 400, kBadRequest,
                               {{"email", {"Please enter a valid email address"}}},
                               "Invalid email");
            return;
        }
        auto account = context.accounts.byEmail(email);
        context.events.record("forgot_password",
                              account ? std::optional<int64_t>(account->id) : std::nullopt,
                              {{"email", email}, {"known", account.has_value()}}, call.now);
        if (!account) {
            Reply::fieldErrors(call.response, 404, kNotFound,
                               {{"email", {"We couldn't find an account with that email address"}}},
                               "Unknown email");
            return;
        }
        Reply::json(call.response,
                    {{"message", "Check your email for a link to reset your password"}});
    });
}

}  // namespace tb::service
