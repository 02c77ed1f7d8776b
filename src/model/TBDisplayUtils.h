#pragma once

namespace tb {

// The two image widths the service is asked for, computed once at start from the screen
// and kept for the run, so that lists build image URLs without doing sums while scrolling.
// Until the app says otherwise they are those of a desktop: scale 1, 1920 pixels wide.
class TBDisplayUtils {
  public:
    // small = roundNumber(screenScale x 80, 50); original = roundNumber(nativeWidth, 150).
    static void init(double screenScale, double nativeWidth);

    static int musicSmallImageSize();
    static int musicOriginalImageSize();

    // `number` rounded to the nearest multiple of `step`; a step below 1 returns the number.
    static double roundNumber(double number, double step);
};

}  // namespace tb
