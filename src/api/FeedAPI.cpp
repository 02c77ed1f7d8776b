#include "api/FeedAPI.h"

#include <nlohmann/json.hpp>

#include "api/APIBaseURLProvider.h"
#include "api/TBJSONRequest.h"
#include "model/Item.h"
#include "platform/JSON.h"

namespace tb {

FeedAPI::FeedAPI(TBSessionManager& signedManager,
                 const APIBaseURLProvider& baseURLProvider,
                 MainQueue& queue)
    : signedManager_(signedManager), baseURLProvider_(baseURLProvider), queue_(queue) {}

Promise<std::vector<OnboardingArtist>> FeedAPI::onboardingItems() {
    return TBJSONRequest::send(signedManager_, queue_, "GET",
                               baseURLProvider_.baseURL() + "onboarding-items",
                               nlohmann::json::object())
        .then([](const TBJSONResponse& response) { return onboardingArtists(response.json); });
}

std::vector<OnboardingArtist> FeedAPI::onboardingArtists(const JSON& json) {
    std::vector<OnboardingArtist> artists;
    for (const JSON& entry : json["results"].arrayValue()) {
        OnboardingArtist artist{Artist::parseFrom(entry["artist"]),
                                Item::parsePlaylistFrom(entry["playlist"])};
        if (artist.artist && artist.playlist) {
            artists.push_back(std::move(artist));
        }
    }
    return artists;
}

}  // namespace tb
