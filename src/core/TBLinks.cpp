#include "core/TBLinks.h"

#include "app/AppContext.h"
#include "core/TunebrookKeys.h"
#include "core/URLComponents.h"

namespace tb {

TBLinks::TBLinks(AppContext& context) : TBLinks(context.singleton<TunebrookKeys>()) {}

TBLinks::TBLinks(const TunebrookKeys& keys) {
    const auto api = URLComponents::parse(keys.wsUrlLive());
    const std::string web = api ? api->origin() : std::string();
    contactUs = web + "/contact-us";
    privacyPolicy = web + "/privacy-policy";
    termsOfService = web + "/about/terms-of-service";
    dashboard = web + "/dashboard";
    appStore = "https://apps.apple.com/app/id" + keys.appleAppIdWithoutId();
    rating = appStore + "?action=write-review";
}

}  // namespace tb
