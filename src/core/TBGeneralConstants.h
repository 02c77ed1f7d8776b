#pragma once

namespace tb {

// Time limits of the start-up, in seconds.
struct TBGeneralConstants {
    double splashSDKInitTimeout = 5.0;
    double adProvidersInitTimeout = 5.0;
};

}  // namespace tb
