#include "model/TBDisplayUtils.h"

#include <algorithm>
#include <cmath>

namespace tb {

namespace {

constexpr double kDesktopScale = 1.0;
constexpr double kDesktopWidth = 1920.0;

// Whole pixels, kept to what an image width can sensibly be.
int imageWidth(double value) {
    if (!std::isfinite(value)) {
        return 0;
    }
    return static_cast<int>(std::clamp(value, 0.0, 100000.0));
}

int smallSize(double screenScale) {
    return imageWidth(TBDisplayUtils::roundNumber(screenScale * 80.0, 50.0));
}

int originalSize(double nativeWidth) {
    return imageWidth(TBDisplayUtils::roundNumber(nativeWidth, 150.0));
}

// Set once at start by the app, read by every mapper on the main queue.
int gSmallImageSize = smallSize(kDesktopScale);
int gOriginalImageSize = originalSize(kDesktopWidth);

}  // namespace

void TBDisplayUtils::init(double screenScale, double nativeWidth) {
    gSmallImageSize = smallSize(screenScale);
    gOriginalImageSize = originalSize(nativeWidth);
}

int TBDisplayUtils::musicSmallImageSize() {
    return gSmallImageSize;
}

int TBDisplayUtils::musicOriginalImageSize() {
    return gOriginalImageSize;
}

double TBDisplayUtils::roundNumber(double number, double step) {
    if (step < 1) {
        return number;
    }
    return std::round(number / step) * step;
}

}  // namespace tb
