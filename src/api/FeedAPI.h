#pragma once

#include <vector>

#include "api/OnboardingArtist.h"
#include "platform/Promise.h"

namespace tb {

class APIBaseURLProvider;
class JSON;
class MainQueue;
class TBSessionManager;

// The signed feed requests of the typed layer.
class FeedAPIProvider {
  public:
    virtual ~FeedAPIProvider() = default;

    // GET "onboarding-items": the artists to offer at onboarding, each with its playlist.
    virtual Promise<std::vector<OnboardingArtist>> onboardingItems() = 0;
};

class FeedAPI final : public FeedAPIProvider {
  public:
    FeedAPI(TBSessionManager& signedManager,
            const APIBaseURLProvider& baseURLProvider,
            MainQueue& queue);

    Promise<std::vector<OnboardingArtist>> onboardingItems() override;

    // "results" as onboarding artists. An entry without a readable artist or playlist is
    // left out, as the mappers drop what they can't read.
    static std::vector<OnboardingArtist> onboardingArtists(const JSON& json);

  private:
    TBSessionManager& signedManager_;
    const APIBaseURLProvider& baseURLProvider_;
    MainQueue& queue_;
};

}  // namespace tb
