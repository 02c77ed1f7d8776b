#include "core/TBLinks.h"

#include "core/TunebrookKeys.h"
#include "core/URLComponents.h"
#include "platform/AppPorts.h"

namespace tb {

namespace {

std::string originOf(const std::string& url) {
    const auto parts = URLComponents::parse(url);
    return parts && !parts->host.empty() ? parts->origin() : std::string();
}

}  // namespace

TBLinks::TBLinks(const std::string& webHost, const std::string& appleAppIdWithoutId)
    : contactUs(webHost + "/contact-us"),
      privacyPolicy(webHost + "/privacy-policy"),
      termsOfService(webHost + "/about/terms-of-service"),
      dashboard(webHost + "/dashboard"),
      appStore("https://apps.apple.com/app/id" + appleAppIdWithoutId) {
    rating = appStore + "?action=write-review";
}

std::string TBLinks::webHostFor(const AppOptions& options, const TunebrookKeys& keys) {
    return originOf(options.webURL.empty() ? keys.wsUrlLive() : options.webURL);
}

bool TBLinks::isLinkId(std::string_view id) {
    constexpr auto npos = std::string_view::npos;
    const auto isPiece = [](std::string_view piece) {
        return !piece.empty() && piece != "." && piece.find('/') == npos;
    };
    if (id.empty() || id.find("..") != npos) {
        return id.empty();
    }
    const auto slash = id.find('/');
    if (slash == npos) {
        return isPiece(id);
    }
    return isPiece(id.substr(0, slash)) && isPiece(id.substr(slash + 1));
}

}  // namespace tb
