#pragma once

#include <string>

namespace tb {

class AppContext;
class TunebrookKeys;

// Addresses the settings and rating screens open. The site pages live on the service's web
// host, which is the origin (scheme, host and port) of the live API address in the key
// store: the service answers its pages and its API on one origin. The store page is the
// app's page in the platform's store, from `appleAppIdWithoutId`.
struct TBLinks {
    explicit TBLinks(AppContext& context);
    explicit TBLinks(const TunebrookKeys& keys);

    std::string contactUs;
    std::string privacyPolicy;
    std::string termsOfService;
    std::string dashboard;
    std::string rating;
    std::string appStore;
};

}  // namespace tb
