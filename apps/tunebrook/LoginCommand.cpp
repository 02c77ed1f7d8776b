#include <iostream>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "AppSession.h"
#include "Command.h"
#include "LoginOutcome.h"
#include "PasswordInput.h"
#include "SocialTokensFile.h"
#include "accounts/TBCredentials.h"
#include "accounts/TBUserManager.h"
#include "app/AppContext.h"

namespace tb {

// `tunebrook login`: signs the listener in by email and password, or with a token of a
// social account ("--social facebook --id ID --token T", "--social google --token T",
// "--social twitter --token T --secret S"). The identity and the token stay in the keychain
// for the next runs. A refusal is told in one line and leaves whoever was signed in before.
class LoginCommand final : public Command {
  public:
    std::string name() const override { return "login"; }
    std::string description() const override { return "Sign in to the service"; }

    void configure(CLI::App& command) override {
        auto* email =
            command.add_option("--email", email_, "The account's email")->type_name("EMAIL");
        auto* password = command.add_option("--password", password_, "The account's password")
                             ->type_name("PASSWORD");
        passwordOption_ = password;
        auto* fromStdin = command.add_flag("--password-stdin", passwordFromStdin_,
                                           "Read the password from standard input");
        auto* social = command.add_option("--social", network_, "Sign in with a social account")
                           ->check(CLI::IsMember({"facebook", "google", "twitter"}))
                           ->type_name("NETWORK");
        command.add_option("--token", socialToken_, "The social account's token")->needs(social);
        command.add_option("--id", socialId_, "The Facebook account's id")->needs(social);
        command.add_option("--secret", socialSecret_, "The Twitter token's secret")->needs(social);
        password->excludes(fromStdin);
        social->excludes(password)->excludes(fromStdin);
        email->description("The account's email (with --social: the email to give a new account)");
    }

    int run(AppSession& session) override {
        auto& users = session.context().userManager();
        LoginOutcome outcome;
        if (network_.empty()) {
            if (email_.empty()) {
                return usage("give --email, or --social with its token");
            }
            std::string error;
            const auto password = PasswordInput::read(
                passwordOption_->count() > 0 ? std::optional(password_) : std::nullopt,
                passwordFromStdin_, error);
            if (!password) {
                return usage(error);
            }
            users.loginWithEmail(email_, *password, false, outcome.success(), outcome.failure(),
                                 outcome.timeout());
        } else if (const auto problem = startSocialLogin(users, outcome)) {
            return usage(*problem);
        }
        if (const int status = outcome.wait(session, name()); status != 0) {
            return status;
        }
        if (!network_.empty()) {
            rememberSocialAccount(session);
        }
        auto& credentials = session.context().credentials();
        std::cout << "Signed in as " << credentials.userScreenName().value_or("") << " ("
                  << credentials.userSlug().value_or("") << ")." << std::endl;
        return 0;
    }

  private:
    std::optional<std::string> startSocialLogin(TBUserManager& users, LoginOutcome& outcome) {
        if (socialToken_.empty()) {
            return "give the " + network_ + " account's --token";
        }
        const std::optional<std::string> email =
            email_.empty() ? std::nullopt : std::optional(email_);
        if (network_ == "facebook") {
            if (socialId_.empty()) {
                return std::string("give the Facebook account's --id");
            }
            users.loginWithFacebookId(socialId_, socialToken_, email, false, outcome.success(),
                                      outcome.failure(), outcome.timeout());
        } else if (network_ == "google") {
            users.loginWithGoogleIdToken(socialToken_, email, false, outcome.success(),
                                         outcome.failure(), outcome.timeout());
        } else {
            if (socialSecret_.empty()) {
                return std::string("give the Twitter token's --secret");
            }
            users.loginWithTwitterToken(socialToken_, socialSecret_, email, false,
                                        outcome.success(), outcome.failure(), outcome.timeout());
        }
        return std::nullopt;
    }

    // The session renews the service's token with the social token later, in other runs;
    // only a token the service took is kept.
    void rememberSocialAccount(AppSession& session) const {
        const auto given = [](const std::string& value) {
            return value.empty() ? std::nullopt : std::optional(value);
        };
        const SocialTokensFile::Account account{network_, given(socialId_), socialToken_,
                                                given(socialSecret_), given(email_)};
        std::string reason;
        if (!SocialTokensFile::remember(SocialTokensFile::pathIn(session.context().paths()),
                                        account, reason)) {
            std::cerr << "tunebrook: " << name() << ": the " << network_
                      << " token could not be kept (" << reason
                      << "); the next renewal will ask to sign in again" << std::endl;
        }
    }

    int usage(const std::string& message) const {
        std::cerr << "tunebrook: " << name() << ": " << message << std::endl;
        return 2;
    }

    std::string email_;
    std::string password_;
    CLI::Option* passwordOption_ = nullptr;
    bool passwordFromStdin_ = false;
    std::string network_;
    std::string socialToken_;
    std::string socialId_;
    std::string socialSecret_;
};

TB_REGISTER_COMMAND(LoginCommand)

}  // namespace tb
