#pragma once

#include <string>
#include <string_view>

namespace tb {

struct AppOptions;
class TunebrookKeys;

// Addresses the settings and rating screens open. The site pages live on the service's web
// host, which the build may name apart from its API hosts; the store page is the app's page
// in the platform's store, from `appleAppIdWithoutId`.
struct TBLinks {
    TBLinks() = default;
    // `webHost` is an origin ("https://host[:port]"), with no path.
    TBLinks(const std::string& webHost, const std::string& appleAppIdWithoutId);

    // The service's web host: the origin of the options' web address when they name one,
    // else the origin of the live API address (a service that answers its pages and its API
    // on one origin). Empty when neither names a host.
    static std::string webHostFor(const AppOptions& options, const TunebrookKeys& keys);

    // Whether a link's item id (as decoded) can be taken: a slug, or an uploader's slug and
    // an item's slug joined by one "/" ("artist-slug/title-slug"). Any other "/" (leading,
    // doubled, a third piece) and any ".." would make the id name another place once it
    // is put into an address or a path, and is refused. The empty id is taken.
    static bool isLinkId(std::string_view id);

    std::string contactUs;
    std::string privacyPolicy;
    std::string termsOfService;
    std::string dashboard;
    std::string rating;
    std::string appStore;
};

}  // namespace tb
