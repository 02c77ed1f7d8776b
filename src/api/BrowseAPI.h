#pragma once

#include "api/FeedAPI.h"

namespace tb {

// The browsing requests of the typed layer, by area.
class BrowseAPIProvider {
  public:
    virtual ~BrowseAPIProvider() = default;
    virtual FeedAPIProvider& feed() = 0;
};

class BrowseAPI final : public BrowseAPIProvider {
  public:
    BrowseAPI(TBSessionManager& signedManager,
              const APIBaseURLProvider& baseURLProvider,
              MainQueue& queue)
        : feed_(signedManager, baseURLProvider, queue) {}

    FeedAPIProvider& feed() override { return feed_; }

  private:
    FeedAPI feed_;
};

}  // namespace tb
