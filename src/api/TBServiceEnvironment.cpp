#include "api/TBServiceEnvironment.h"

#include "core/TunebrookKeys.h"

namespace tb {

TBServiceEnvironment::TBServiceEnvironment(const TunebrookKeys& keys) : keys_(keys) {}

void TBServiceEnvironment::useProd() {
    baseURL_ = withTrailingSlash(keys_.wsUrlLive());
}

void TBServiceEnvironment::useDev() {
    baseURL_ = withTrailingSlash(keys_.wsUrlDev());
}

std::string TBServiceEnvironment::baseURL() const {
    if (baseURL_) {
        return *baseURL_;
    }
    return withTrailingSlash(keys_.wsUrlLive());
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
