#include "api/MyProfileAPI.h"

#include <nlohmann/json.hpp>

#include "api/APIBaseURLProvider.h"
#include "api/APIError.h"
#include "api/ProfileEditError.h"
#include "api/TBJSONRequest.h"
#include "platform/Base64.h"
#include "platform/JSON.h"

namespace tb {

namespace {

using TextField = std::optional<std::string> Artist::*;

struct EditableField {
    const char* key;
    TextField member;
};

constexpr EditableField kEditableFields[] = {
    {"name", &Artist::name},         {"label", &Artist::label},
    {"hometown", &Artist::hometown}, {"url", &Artist::url},
    {"bio", &Artist::bio},           {"twitter", &Artist::twitter},
    {"facebook", &Artist::facebook}, {"instagram", &Artist::instagram},
    {"genre", &Artist::genre},       {"youtube", &Artist::youtube},
};

}  // namespace

MyProfileAPI::MyProfileAPI(TBSessionManager& signedManager,
                           const APIBaseURLProvider& baseURLProvider,
                           MainQueue& queue,
                           TBCoreDataManager& store)
    : signedManager_(signedManager),
      baseURLProvider_(baseURLProvider),
      queue_(queue),
      store_(store) {}

Promise<ArtistPtr> MyProfileAPI::updateProfile(const nlohmann::json& fields) {
    MainQueue& queue = queue_;
    TBCoreDataManager& store = store_;
    return TBJSONRequest::send(signedManager_, queue_, "PUT", baseURLProvider_.baseURL() + kPath,
                               fields)
        .recover([&queue](const Error& failure) {
            return Promise<TBJSONResponse>::rejected(queue, ProfileEditError::fromFailure(failure));
        })
        .then([&queue, &store](const TBJSONResponse& response) {
            ArtistPtr user = Artist::parseFrom(response.json["user"]);
            if (!user) {
                return Promise<ArtistPtr>::rejected(
                    queue, APIError::makeGeneric("[Artist] Couldn't parse current user data"));
            }
            user->cacheObject(store);
            // Without an open store there is nothing saved, and the parsed record is all
            // there is.
            ArtistPtr saved = Artist::savedArtist(store);
            return Promise<ArtistPtr>::fulfilled(queue, saved ? saved : user);
        });
}

nlohmann::json MyProfileAPI::changedFields(const Artist& saved,
                                           const Artist& edited,
                                           const std::optional<std::string>& image,
                                           const std::optional<std::string>& imageBanner) {
    nlohmann::json fields = nlohmann::json::object();
    for (const EditableField& field : kEditableFields) {
        if (saved.*field.member != edited.*field.member) {
            fields[field.key] = (edited.*field.member).value_or("");
        }
    }
    if (image) {
        fields["image"] = base64Encode(*image);
    }
    if (imageBanner) {
        fields["image_banner"] = base64Encode(*imageBanner);
    }
    return fields;
}

}  // namespace tb
