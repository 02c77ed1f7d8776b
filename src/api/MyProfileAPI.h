#pragma once

#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "model/Artist.h"
#include "platform/Promise.h"

namespace tb {

class APIBaseURLProvider;
class MainQueue;
class TBCoreDataManager;
class TBSessionManager;

// The listener's profile on the typed layer.
class MyProfileAPIProvider {
  public:
    virtual ~MyProfileAPIProvider() = default;

    // Sends the changed profile fields (see MyProfileAPI::changedFields). On success the
    // answer's "user" becomes the saved current user, which the promise fulfils with. A
    // failed request rejects with a ProfileEditError; a "user" that isn't an account rejects
    // with APIError generic "[Artist] Couldn't parse current user data".
    virtual Promise<ArtistPtr> updateProfile(const nlohmann::json& fields) = 0;
};

class MyProfileAPI final : public MyProfileAPIProvider {
  public:
    static constexpr const char* kPath = "user/profile";

    MyProfileAPI(TBSessionManager& signedManager,
                 const APIBaseURLProvider& baseURLProvider,
                 MainQueue& queue,
                 TBCoreDataManager& store);

    Promise<ArtistPtr> updateProfile(const nlohmann::json& fields) override;

    // The request fields for an edit of `saved` into `edited`: each of "name", "label",
    // "hometown", "url", "bio", "twitter", "facebook", "instagram", "genre", "youtube" whose
    // value differs (a cleared value is sent as ""), and "image" and "image_banner" as Base64
    // text of the new pictures' bytes, when given.
    static nlohmann::json changedFields(
        const Artist& saved,
        const Artist& edited,
        const std::optional<std::string>& image = std::nullopt,
        const std::optional<std::string>& imageBanner = std::nullopt);

  private:
    TBSessionManager& signedManager_;
    const APIBaseURLProvider& baseURLProvider_;
    MainQueue& queue_;
    TBCoreDataManager& store_;
};

}  // namespace tb
