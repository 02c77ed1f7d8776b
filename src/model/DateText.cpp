#include "model/DateText.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace tb {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
// 0001-01-01 and 10000-01-01, in days since 1970.
constexpr std::int64_t kFirstDay = -719162;
constexpr std::int64_t kDayAfterLast = 2932897;

struct CivilDate {
    std::int64_t year;
    unsigned month;  // 1...12
    unsigned day;    // 1...31
};

// Days since 1970-01-01 to the proleptic Gregorian calendar, and back (H. Hinnant's
// algorithms, exact for every day in range).
CivilDate civilFromDays(std::int64_t days) {
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned shiftedMonth = (5 * dayOfYear + 2) / 153;
    const unsigned day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const unsigned month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const std::int64_t year = static_cast<std::int64_t>(yearOfEra) + era * 400 + (month <= 2);
    return {year, month, day};
}

std::int64_t daysFromCivil(std::int64_t year, unsigned month, unsigned day) {
    year -= month <= 2;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const auto yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

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
    static constexpr std::array<const char*, 12> kMonths = {
        "January", "February", "March",     "April",   "May",      "June",
        "July",    "August",   "September", "October", "November", "December"};
    const CivilDate date = civilFromDays(static_cast<std::int64_t>(days));
    return std::string(kMonths[date.month - 1]) + " " + std::to_string(date.day) + ", " +
           std::to_string(date.year);
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
    if (year < 1 || month < 1 || month > 12 || day < 1 || hour < 0 || hour > 23 || minute < 0 ||
        minute > 59 || second < 0 || second > 59 || micros < 0) {
        return std::nullopt;
    }
    if (static_cast<unsigned>(day) > daysInMonth(year, static_cast<unsigned>(month))) {
        return std::nullopt;
    }
    const std::int64_t days =
        daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day));
    const std::int64_t seconds = days * kSecondsPerDay + hour * 3600 + minute * 60 + second;
    return static_cast<double>(seconds) + micros / 1e6;
}

}  // namespace tb
