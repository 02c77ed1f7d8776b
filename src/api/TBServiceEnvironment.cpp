#include "api/TBServiceEnvironment.h"

#include "core/TunebrookKeys.h"

namespace tb {

TBServiceEnvironment::TBServiceEnvironment(const TunebrookKeys& keys) : keys_(keys) {}

void TBServiceEnvironment::useProd() {
    baseURL_ = liveBaseURL();
}

void TBServiceEnvironment::useDev() {
    baseURL_ = devBaseURL();
}

std::string TBServiceEnvironment::baseURL() const {
    return baseURL_ ? *baseURL_ : liveBaseURL();
}

std::string TBServiceEnvironment::liveBaseURL() const {
    return withTrailingSlash(keys_.wsUrlLive());
}

std::string TBServiceEnvironment::devBaseURL() const {
    return withTrailingSlash(keys_.wsUrlDev());
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
