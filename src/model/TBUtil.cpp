#include "model/TBUtil.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>

#include "platform/JSON.h"
#include "platform/PercentEncoding.h"
#include "platform/SafeFileName.h"
#include "platform/StringUtil.h"

namespace tb {

namespace {

// The decimal text of a single-precision value cut (never rounded up) to `digits` fraction
// digits, padded with zeros to that many. The cut works on the float's exact binary value,
// as a number formatter rounding down does: 1170 / 1000 in single precision is
// 1.1699999570..., so two digits give "1.16". Scaling by 10 or 100 is exact in double
// precision (24 bits of the float and 7 of the scale fit into 53), so floor() cuts exactly.
std::string cutFloat(float value, int digits) {
    const std::int64_t scale = digits >= 2 ? 100 : digits == 1 ? 10 : 1;
    const double scaled = std::floor(static_cast<double>(value) * static_cast<double>(scale));
    if (!std::isfinite(scaled) || std::fabs(scaled) >= 9e18) {
        return "0";
    }
    const auto units = static_cast<std::int64_t>(scaled);
    const std::string whole = std::to_string(units / scale);
    if (scale == 1) {
        return whole;
    }
    std::string fraction = std::to_string(units % scale);
    fraction.insert(0, static_cast<size_t>(digits) - fraction.size(), '0');
    return whole + "." + fraction;
}

bool isArtworkNameSeparator(char c) {
    switch (c) {
        case '/':
        case '\\':
        case '?':
        case '%':
        case '*':
        case '|':
        case '"':
        case '<':
        case '>':
        case ':':
        case '\0':  // a file name ends at a zero byte; it may not hide inside one
            return true;
        default:
            return false;
    }
}

bool isUtf8Continuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

}  // namespace

std::string TBUtil::cleanString(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') {
            continue;
        }
        if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == '/') {
            result += '/';
            ++i;
            continue;
        }
        result += text[i];
    }
    return result;
}

std::optional<std::int64_t> TBUtil::integerFromText(std::string_view text) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') {
            return std::nullopt;
        }
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

std::string TBUtil::timeStringFromSeconds(double seconds) {
    if (!(seconds >= 0)) {  // also NaN
        return "-:--";
    }
    constexpr double kLargest = static_cast<double>(std::numeric_limits<std::int64_t>::max() / 2);
    const auto total = static_cast<std::int64_t>(std::min(seconds, kLargest));
    const std::int64_t minutes = total / 60;
    const std::int64_t rest = total % 60;
    return std::to_string(minutes) + ":" + (rest < 10 ? "0" : "") + std::to_string(rest);
}

std::string TBUtil::formatShortStatNumber(std::int64_t value) {
    if (value == 0) {
        return "0";
    }
    if (value < 1000) {
        return std::to_string(value);
    }
    float divisor = 1e9f;
    const char* unit = "B";
    std::int64_t unitSize = 1000000000;
    if (value <= 999999) {
        divisor = 1e3f;
        unit = "K";
        unitSize = 1000;
    } else if (value <= 999999999) {
        divisor = 1e6f;
        unit = "M";
        unitSize = 1000000;
    }
    const int digits = value < unitSize * 10 ? 2 : value < unitSize * 100 ? 1 : 0;
    const float quotient = static_cast<float>(value) / divisor;
    return cutFloat(quotient, digits) + unit;
}

std::string TBUtil::formatFullStatNumber(std::int64_t value) {
    if (value == 0) {
        return "0";
    }
    const bool negative = value < 0;
    // The magnitude as unsigned text, so that the smallest int64 has one too.
    const std::uint64_t magnitude =
        negative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    const std::string digits = std::to_string(magnitude);
    std::string result;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) {
            result += ',';
        }
        result += digits[i];
    }
    return negative ? "-" + result : result;
}

std::string TBUtil::remoteUrlToArtworkFile(std::string_view url, const std::string& documents) {
    std::string name;
    name.reserve(url.size());
    for (const char c : url) {
        if (!isArtworkNameSeparator(c)) {
            name += c;
        }
    }
    constexpr size_t kLongestName = 255;
    if (name.size() > kLongestName) {
        size_t start = name.size() - kLongestName;
        while (start < name.size() && isUtf8Continuation(name[start])) {
            ++start;
        }
        name.erase(0, start);
    }
    if (name.empty() || name == "." || name == "..") {
        name = safeFileName(name);
    }
    const std::string folder = documents + "/artworks";
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    return folder + "/" + name;
}

std::vector<std::string> TBUtil::getFeatArtistsFrom(const std::optional<std::string>& featured) {
    std::vector<std::string> names;
    if (!featured) {
        return names;
    }
    for (const auto part : split(*featured, ",")) {
        for (const auto piece : split(part, " and ")) {
            names.push_back(trimmed(piece));
        }
    }
    return names;
}

std::vector<double> TBUtil::interpolatedData(const std::vector<std::int64_t>& data, int maxTicks) {
    std::vector<double> points;
    if (data.empty() || maxTicks <= 0) {
        return points;
    }
    const auto ticks = static_cast<size_t>(maxTicks);
    points.reserve(ticks);
    if (data.size() == 1 || ticks == 1) {
        points.assign(ticks, static_cast<double>(data.front()));
        return points;
    }
    const double step = static_cast<double>(data.size() - 1) / static_cast<double>(ticks - 1);
    for (size_t i = 0; i < ticks; ++i) {
        const double position = static_cast<double>(i) * step;
        const auto before = std::min(static_cast<size_t>(position), data.size() - 1);
        const size_t after = std::min(before + 1, data.size() - 1);
        points.push_back(linearInterpolatedPoint(static_cast<double>(data[before]),
                                                 static_cast<double>(data[after]),
                                                 position - static_cast<double>(before)));
    }
    return points;
}

double TBUtil::linearInterpolatedPoint(double before, double after, double current) {
    return before + (after - before) * current;
}

std::string TBUtil::urlEncodedString(std::string_view value) {
    return percentEncodeQueryValue(value);
}

std::string TBUtil::yesNo(bool value) {
    return value ? "yes" : "no";
}

std::optional<std::string> TBUtil::stringOrNil(const JSON& value) {
    return value.string();
}

std::optional<std::string> TBUtil::stringFrom(const JSON& dictionary, std::string_view key) {
    return dictionary[key].string();
}

std::vector<JSON> TBUtil::arrayFrom(const JSON& dictionary, std::string_view key) {
    return dictionary[key].arrayValue();
}

bool TBUtil::areEqualString(const std::optional<std::string>& a,
                            const std::optional<std::string>& b) {
    return a == b;
}

int TBUtil::buildType() {
#if defined(TB_BUILD_TYPE)
    return TB_BUILD_TYPE;
#elif defined(NDEBUG)
    return TBBuildTypeProduction;
#else
    return TBBuildTypeDebug;
#endif
}

std::optional<std::string> TBUtil::releaseStage(int buildType) {
    switch (buildType) {
        case TBBuildTypeDebug:
            return "Debug";
        case TBBuildTypeAdHoc:
            return "AdHoc";
        case TBBuildTypeTestFlight:
            return "TestFlight";
        case TBBuildTypeProduction:
            return "Production";
        default:
            return std::nullopt;
    }
}

}  // namespace tb
