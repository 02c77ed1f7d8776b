#pragma once

#include "api/APIBaseURLProvider.h"

namespace tb {

class NotificationCenter;
class TBServiceEnvironment;
class UserDefaultsProvider;

// The typed layer's base URL from the "liveEnvironment" user default, read each time:
// absent or "1" gives the live host, anything else the test host. Unlike the catalogue's base
// URL, which the launch fixes once, this one follows the default as it is now.
class TBAPIBaseURLProvider final : public APIBaseURLProvider {
  public:
    TBAPIBaseURLProvider(UserDefaultsProvider& defaults,
                         NotificationCenter& notifications,
                         const TBServiceEnvironment& environment);

    std::string baseURL() const override;

  private:
    UserDefaultsProvider& defaults_;
    NotificationCenter& notifications_;
    const TBServiceEnvironment& environment_;
};

}  // namespace tb
