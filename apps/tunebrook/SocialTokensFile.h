#pragma once

#include <optional>
#include <string>

namespace tb {

struct Paths;

// The social accounts' tokens on this machine, where a phone's sign-in libraries would keep
// them: "login --social" writes the account's token here, and later runs hand it to the
// session, which renews the service's token with it after a 401. A private file (0600) in
// the app's support folder, replaced atomically.
class SocialTokensFile {
  public:
    struct Account {
        std::string network;  // "facebook", "google" or "twitter"
        std::optional<std::string> id;
        std::string token;
        std::optional<std::string> secret;
        std::optional<std::string> email;
    };

    static std::string pathIn(const Paths& paths);

    // Keeps `account` beside the other networks' tokens. False with a reason when the file
    // can't be written.
    static bool remember(const std::string& path, const Account& account, std::string& reason);
    // Forgets every network's token.
    static void forgetAll(const std::string& path);
};

}  // namespace tb
