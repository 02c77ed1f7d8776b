#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/RandomSource.h"

namespace tb {

class JSON;

// Build types, the result of TBUtil::buildType().
enum TBBuildType : int {
    TBBuildTypeDebug = 0,
    TBBuildTypeAdHoc = 1,
    TBBuildTypeTestFlight = 2,
    TBBuildTypeProduction = 3,
};

// Formatters and small helpers shared by the mappers and the screens.
class TBUtil {
  public:
    // Text cleaning of service values: every double quote removed, every "\/" made "/".
    static std::string cleanString(std::string_view text);

    // A whole decimal number written as text: an optional sign and digits, nothing else.
    // Nil when the text is anything else or the number does not fit in 64 bits.
    static std::optional<std::int64_t> integerFromText(std::string_view text);

    // "m:ss"; minutes are not split into hours (3661 -> "61:01"); below 0 -> "-:--".
    static std::string timeStringFromSeconds(double seconds);

    // Short statistics: "0", the plain number below 1000, then K, M and B. The value is
    // divided in single precision and cut (never rounded up) to 2, 1 or 0 fraction digits as
    // it is below ten, below a hundred, or from a hundred units on: 9999 -> "9.99K",
    // 99999 -> "99.9K", 999999 -> "999K", 1000000 -> "1.00M". The cut works on the exact
    // binary value of the single-precision quotient, as a formatter rounding down does:
    // 1170 / 1000 is 1.16999995... in single precision, so 1170 -> "1.16K".
    static std::string formatShortStatNumber(std::int64_t value);

    // Full statistics with "," between groups of three: 1234567 -> "1,234,567".
    static std::string formatFullStatNumber(std::int64_t value);

    // The local artwork file of a remote image URL: `documents`/artworks/<name>, where the
    // name is the URL with every / \ ? % * | " < > : removed, cut to its last 255 bytes when
    // longer (never inside a UTF-8 sequence). Creates the "artworks" folder on every call.
    // A name that would be empty, "." or ".." is made safe instead (see safeFileName).
    static std::string remoteUrlToArtworkFile(std::string_view url, const std::string& documents);

    // The names in a "featuring" text, split on "," and " and ", each trimmed. A part that
    // is blank stays, as "": "A, , B" -> "A", "", "B". Nil gives no names.
    static std::vector<std::string> getFeatArtistsFrom(const std::optional<std::string>& featured);

    // The waveform resampled to `maxTicks` points: point i lies at i * (n - 1) / (maxTicks - 1)
    // on the samples and is interpolated linearly between its two neighbours. A single
    // sample is repeated; no samples or no ticks give nothing.
    static std::vector<double> interpolatedData(const std::vector<std::int64_t>& data,
                                                int maxTicks);
    // The point at `current` (0...1) of the way from `before` to `after`.
    static double linearInterpolatedPoint(double before, double after, double current);

    // A shuffled copy: a forward Fisher-Yates pass, for i from 0 with n = count - i
    // remaining, exchanging positions i and i + random.uniform(n).
    template <typename T>
    static std::vector<T> shuffle(std::vector<T> array, RandomSource& random);

    // Percent-encodes a value for a query: everything but A-Z a-z 0-9 - . _ ~ becomes %XX.
    static std::string urlEncodedString(std::string_view value);

    // Guards for the dictionary mappers and request builders.
    static std::string yesNo(bool value);  // "yes" or "no", as the service writes flags
    static std::optional<std::string> stringOrNil(const JSON& value);
    static std::optional<std::string> stringFrom(const JSON& dictionary, std::string_view key);
    static std::vector<JSON> arrayFrom(const JSON& dictionary, std::string_view key);
    // Equal texts, or both nil.
    static bool areEqualString(const std::optional<std::string>& a,
                               const std::optional<std::string>& b);

    // The build's type: TB_BUILD_TYPE when the build defines it, otherwise Debug for builds
    // with assertions and Production for optimised ones.
    static int buildType();
    // "Debug", "AdHoc", "TestFlight", "Production" for the crash reporter; nil from 4 on.
    static std::optional<std::string> releaseStage(int buildType);
};

template <typename T>
std::vector<T> TBUtil::shuffle(std::vector<T> array, RandomSource& random) {
    const auto count = static_cast<std::uint32_t>(array.size());
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t j = i + random.uniform(count - i);
        if (j != i && j < count) {
            std::swap(array[i], array[j]);
        }
    }
    return array;
}

}  // namespace tb
