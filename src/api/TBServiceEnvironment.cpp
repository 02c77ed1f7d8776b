#include "api/TBServiceEnvironment.h"

#include "app/AppContext.h"
#include "core/TunebrookKeys.h"

namespace tb {

TBServiceEnvironment::TBServiceEnvironment(AppContext& context) : context_(context) {}

void TBServiceEnvironment::useProd() {
    baseURL_ = withTrailingSlash(context_.singleton<TunebrookKeys>().wsUrlLive());
}

void TBServiceEnvironment::useDev() {
    baseURL_ = withTrailingSlash(context_.singleton<TunebrookKeys>().wsUrlDev());
}

std::string TBServiceEnvironment::baseURL() const {
    if (baseURL_) {
        return *baseURL_;
    }
    return withTrailingSlash(context_.singleton<TunebrookKeys>().wsUrlLive());
}

// A keys file written by hand may leave the slash off; the paths would then run into the
// host's last segment ("v1music/...").
std::string TBServiceEnvironment::withTrailingSlash(std::string url) {
    if (url.empty() || url.back() != '/') {
        url += '/';
    }
    return url;
}

}  // namespace tb
