#include <iostream>
#include <string>

#include "AppSession.h"
#include "Command.h"
#include "SocialTokensFile.h"
#include "accounts/TBCredentials.h"
#include "app/AppContext.h"

namespace tb {

// `tunebrook logout`: forgets the identity and the token on this device. Signing out when
// nobody is signed in is not an error.
class LogoutCommand final : public Command {
  public:
    std::string name() const override { return "logout"; }
    std::string description() const override { return "Sign out on this device"; }
    void configure(CLI::App&) override {}

    int run(AppSession& session) override {
        auto& credentials = session.context().credentials();
        if (!credentials.loggedIn()) {
            std::cout << "Nobody is signed in." << std::endl;
            return 0;
        }
        const std::string slug = credentials.userSlug().value_or("");
        credentials.logout();
        // The social accounts' tokens go too: nothing of this listener stays behind.
        SocialTokensFile::forgetAll(SocialTokensFile::pathIn(session.context().paths()));
        std::cout << "Signed out" << (slug.empty() ? "" : " of " + slug) << "." << std::endl;
        return 0;
    }
};

TB_REGISTER_COMMAND(LogoutCommand)

}  // namespace tb
