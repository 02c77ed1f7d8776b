#include <iostream>
#include <string>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "AppSession.h"
#include "CatalogueOutput.h"
#include "Command.h"
#include "accounts/TBCredentials.h"
#include "accounts/TBUserManager.h"
#include "api/TBFailureInfo.h"
#include "api/TBXAuthClientManager.h"
#include "app/AppContext.h"

namespace tb {

// `tunebrook whoami`: who is signed in on this device, and what the service says of them
// now: the listener's record is asked for with the stored token (renewed on the way when it
// has expired), which also fills the favourites, follows, reposts and playlists counted
// here. Without an answer the device's own record is shown, with a note on stderr. Nobody
// signed in: exit 1. The token and the password are never shown.
class WhoamiCommand final : public Command {
  public:
    std::string name() const override { return "whoami"; }
    std::string description() const override { return "Who is signed in"; }
    void configure(CLI::App&) override {}

    int run(AppSession& session) override {
        auto& credentials = session.context().credentials();
        if (!credentials.loggedIn()) {
            if (session.jsonOutput()) {
                std::cout << nlohmann::json{{"signed_in", false}}.dump(2) << std::endl;
            } else {
                std::cout << "Nobody is signed in." << std::endl;
            }
            return 1;
        }
        const bool answered = refresh(session);
        if (!credentials.loggedIn()) {
            std::cerr << "tunebrook: " << name()
                      << ": the service refused the stored identity; this device is signed out"
                      << std::endl;
            return 1;
        }
        print(credentials, answered, session.jsonOutput());
        return 0;
    }

  private:
    static constexpr double kWaitSeconds = 90;

    bool refresh(AppSession& session) const {
        bool done = false;
        bool answered = false;
        std::string problem;
        session.context().userManager().getUserData([&](const JSON&) { answered = done = true; },
                                                    [&](const TBFailureInfo& failure) {
                                                        problem =
                                                            CatalogueOutput::failureText(failure);
                                                        done = true;
                                                    });
        // A 401 parks the request until the token is renewed; a renewal that fails never
        // answers it. So the wait also ends once a renewal has come and gone with nothing
        // left in flight.
        auto& users = session.context().userManager();
        auto& client = session.context().clients().client();
        bool sawRenewal = false;
        const bool ended = session.runUntil(
            [&] {
                sawRenewal = sawRenewal || users.refreshingToken();
                return done ||
                       (sawRenewal && !users.refreshingToken() && client.requestsInFlight() == 0);
            },
            kWaitSeconds);
        if (!ended) {
            problem = "no answer from the service";
        } else if (!done) {
            problem = "the stored identity could not renew its token";
        }
        if (!answered) {
            std::cerr << "tunebrook: " << name() << ": " << problem
                      << "; showing what this device knows" << std::endl;
        }
        return answered;
    }

    static std::string signedInWith(TBCredentials& credentials) {
        if (credentials.facebookId()) {
            return "facebook";
        }
        if (credentials.googleIdToken()) {
            return "google";
        }
        if (credentials.twitterToken()) {
            return "twitter";
        }
        return "email";
    }

    static void print(TBCredentials& credentials, bool answered, bool json) {
        const auto text = [](const std::optional<std::string>& value) {
            return value.value_or("");
        };
        if (json) {
            std::cout << nlohmann::json{
                             {"signed_in", true},
                             {"slug", text(credentials.userSlug())},
                             {"id", text(credentials.userId())},
                             {"screen_name", text(credentials.userScreenName())},
                             {"email", text(credentials.userEmail())},
                             {"with", signedInWith(credentials)},
                             {"checked_with_service", answered},
                             {"favorite_music", credentials.favoriteMusic().size()},
                             {"favorite_playlists", credentials.favoritePlaylists().size()},
                             {"playlists", credentials.myPlaylistsCount()},
                             {"following", credentials.followingArtists().size()},
                             {"reposts", credentials.reups().size()},
                             {"highlights", credentials.highlights().size()},
                         }
                             .dump(2)
                      << std::endl;
            return;
        }
        std::cout << "Signed in as " << text(credentials.userScreenName()) << " ("
                  << text(credentials.userSlug()) << "), id " << text(credentials.userId())
                  << ", with " << signedInWith(credentials) << std::endl;
        if (const auto email = credentials.userEmail()) {
            std::cout << "  email: " << *email << std::endl;
        }
        if (answered) {
            std::cout << "  favorites: " << credentials.favoritedItemsCount()
                      << ", playlists: " << credentials.myPlaylistsCount()
                      << ", following: " << credentials.followingArtists().size()
                      << ", reposts: " << credentials.reups().size()
                      << ", highlights: " << credentials.highlights().size() << std::endl;
        }
    }
};

TB_REGISTER_COMMAND(WhoamiCommand)

}  // namespace tb
