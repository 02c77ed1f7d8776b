#pragma once

#include "api/MyProfileAPI.h"

namespace tb {

// The listener's own requests of the typed layer.
class SocialAPIProvider {
  public:
    virtual ~SocialAPIProvider() = default;
    virtual MyProfileAPIProvider& myProfile() = 0;
};

class SocialAPI final : public SocialAPIProvider {
  public:
    SocialAPI(TBSessionManager& signedManager,
              const APIBaseURLProvider& baseURLProvider,
              MainQueue& queue,
              TBCoreDataManager& store)
        : myProfile_(signedManager, baseURLProvider, queue, store) {}

    MyProfileAPIProvider& myProfile() override { return myProfile_; }

  private:
    MyProfileAPI myProfile_;
};

}  // namespace tb
