#include <iostream>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "AppSession.h"
#include "Command.h"
#include "LoginOutcome.h"
#include "PasswordInput.h"
#include "accounts/TBCredentials.h"
#include "accounts/TBUserManager.h"
#include "app/AppContext.h"

namespace tb {

// `tunebrook register`: makes an account with an email, an artist name and a password, and
// signs it in. The service's objections to the fields come back in one line.
class RegisterCommand final : public Command {
  public:
    std::string name() const override { return "register"; }
    std::string description() const override { return "Make an account and sign in to it"; }

    void configure(CLI::App& command) override {
        command.add_option("--email", email_, "The new account's email")
            ->type_name("EMAIL")
            ->required();
        command.add_option("--artist-name", artistName_, "The name others see")
            ->type_name("NAME")
            ->required();
        passwordOption_ =
            command.add_option("--password", password_, "The password")->type_name("PASSWORD");
        command
            .add_flag("--password-stdin", passwordFromStdin_,
                      "Read the password from standard input")
            ->excludes(passwordOption_);
    }

    int run(AppSession& session) override {
        std::string error;
        const auto password = PasswordInput::read(
            passwordOption_->count() > 0 ? std::optional(password_) : std::nullopt,
            passwordFromStdin_, error);
        if (!password) {
            std::cerr << "tunebrook: " << name() << ": " << error << std::endl;
            return 2;
        }
        LoginOutcome outcome;
        session.context().userManager().registerUser(email_, artistName_, *password,
                                                     outcome.success(), outcome.failure(),
                                                     outcome.timeout());
        if (const int status = outcome.wait(session, name()); status != 0) {
            return status;
        }
        auto& credentials = session.context().credentials();
        std::cout << "Registered and signed in as " << credentials.userScreenName().value_or("")
                  << " (" << credentials.userSlug().value_or("") << ")." << std::endl;
        return 0;
    }

  private:
    std::string email_;
    std::string artistName_;
    std::string password_;
    CLI::Option* passwordOption_ = nullptr;
    bool passwordFromStdin_ = false;
};

TB_REGISTER_COMMAND(RegisterCommand)

}  // namespace tb
