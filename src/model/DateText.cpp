#include "model/DateText.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <ctime>

namespace tb {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
// 0001-01-01 and 10000-01-01, in days since 1970, each widened by a day: no zone is a day
// away from UTC, so the exact bounds are then checked on the local date.
constexpr std::int64_t kFirstDay = -719162 - 1;
constexpr std::int64_t kDayAfterLast = 2932897 + 1;
constexpr int kFirstYear = 1;
constexpr int kLastYear = 9999;

unsigned daysInMonth(std::int64_t year, unsigned month) {
    static constexpr std::array<unsigned, 12> kDays = {31, 28, 31, 30, 31, 30,
                                                       31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : kDays[month - 1];
}

// The number written by `count` digits at `position`, or -1.
int digitsAt(std::string_view text, size_t position, size_t count) {
    int value = 0;
    for (size_t i = position; i < position + count; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return -1;
        }
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

}  // namespace

std::optional<std::string> DateText::longDate(Date secondsSince1970) {
    if (!std::isfinite(secondsSince1970)) {
        return std::nullopt;
    }
    const double days = std::floor(secondsSince1970 / static_cast<double>(kSecondsPerDay));
    if (days < static_cast<double>(kFirstDay) || days >= static_cast<double>(kDayAfterLast)) {
        return std::nullopt;
    }
    const auto whole = static_cast<std::time_t>(std::floor(secondsSince1970));
    std::tm local{};
    if (localtime_r(&whole, &local) == nullptr) {
        return std::nullopt;
    }
    const std::int64_t year = static_cast<std::int64_t>(local.tm_year) + 1900;
    if (year < kFirstYear || year > kLastYear || local.tm_mon < 0 || local.tm_mon > 11) {
        return std::nullopt;
    }
    static constexpr std::array<const char*, 12> kMonths = {
        "January", "February", "March",     "April",   "May",      "June",
        "July",    "August",   "September", "October", "November", "December"};
    return std::string(kMonths[static_cast<std::size_t>(local.tm_mon)]) + " " +
           std::to_string(local.tm_mday) + ", " + std::to_string(year);
}

std::optional<Date> DateText::parseMicrosecondTimestamp(std::string_view text) {
    // yyyy-MM-ddTHH:mm:ss.SSSSSS
    // 0123456789012345678901234 5
    if (text.size() != 26 || text[4] != '-' || text[7] != '-' || text[10] != 'T' ||
        text[13] != ':' || text[16] != ':' || text[19] != '.') {
        return std::nullopt;
    }
    const int year = digitsAt(text, 0, 4);
    const int month = digitsAt(text, 5, 2);
    const int day = digitsAt(text, 8, 2);
    const int hour = digitsAt(text, 11, 2);
    const int minute = digitsAt(text, 14, 2);
    const int second = digitsAt(text, 17, 2);
    const int micros = digitsAt(text, 20, 6);
    if (year < kFirstYear || month < 1 || month > 12 || day < 1 || hour < 0 || hour > 23 ||
        minute < 0 || minute > 59 || second < 0 || second > 59 || micros < 0) {
        return std::nullopt;
    }
    if (static_cast<unsigned>(day) > daysInMonth(year, static_cast<unsigned>(month))) {
        return std::nullopt;
    }
    std::tm local{};
    local.tm_year = year - 1900;
    local.tm_mon = month - 1;
    local.tm_mday = day;
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_sec = second;
    local.tm_isdst = -1;  // the zone's rules say whether summer time applies
    errno = 0;
    const std::time_t seconds = std::mktime(&local);
    if (seconds == static_cast<std::time_t>(-1) && errno != 0) {
        return std::nullopt;
    }
    return static_cast<double>(seconds) + micros / 1e6;
}

}  // namespace tb
