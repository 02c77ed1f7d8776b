#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tb {

class TBCredentials;
struct Artist;
using ArtistPtr = std::shared_ptr<Artist>;

// A read-only view of the signed-in listener for analytics. The tester flag is a remote
// value and the count of offline downloads a query of the offline store; both are asked of
// whoever owns them, at each call.
class TBUserRepository {
  public:
    struct Sources {
        std::function<bool()> isTester;
        std::function<std::int64_t()> offlineDownloadsCount;
    };

    TBUserRepository(TBCredentials& credentials, Sources sources);

    bool isLoggedIn();
    bool hasSavedArtist();
    bool isAdmin();
    bool isTester();
    std::optional<std::string> userSlug();
    std::optional<std::string> userId();
    std::optional<std::string> userScreenName();
    std::optional<std::string> userEmail();
    std::optional<std::string> userPictureURLString();
    ArtistPtr savedArtist();
    std::int64_t offlineDownloadsCount();

  private:
    TBCredentials& credentials_;
    Sources sources_;
};

}  // namespace tb
