#include <cmath>
#include <string>

#include "ScopedTimeZone.h"
#include "model/DateText.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(DateTextTest, LongDatesOfTheDayInUtc) {
    const test::ScopedTimeZone utc("UTC0");
    EXPECT_EQ(DateText::longDate(0), "January 1, 1970");
    EXPECT_EQ(DateText::longDate(86399.9), "January 1, 1970");
    EXPECT_EQ(DateText::longDate(-0.001), "December 31, 1969");
    EXPECT_EQ(DateText::longDate(1795305600), "November 22, 2026");
    EXPECT_EQ(DateText::longDate(951782400), "February 29, 2000");
    EXPECT_EQ(DateText::longDate(253402300799.0), "December 31, 9999");
    EXPECT_EQ(DateText::longDate(-62135596800.0), "January 1, 1");
}

TEST(DateTextTest, LongDatesAreTheDayInTheDevicesZone) {
    {
        const test::ScopedTimeZone tokyo("JST-9");
        EXPECT_EQ(DateText::longDate(-1), "January 1, 1970");  // 08:59:59 there
        EXPECT_EQ(DateText::longDate(1795305600 - 9 * 3600), "November 22, 2026");
        EXPECT_EQ(DateText::longDate(1795305600 - 9 * 3600 - 1), "November 21, 2026");
        // The last second of 9999 in UTC is already the year 10000 there.
        EXPECT_EQ(DateText::longDate(253402300799.0), std::nullopt);
    }
    {
        const test::ScopedTimeZone pacific("PST8PDT,M3.2.0,M11.1.0");
        EXPECT_EQ(DateText::longDate(0), "December 31, 1969");
        EXPECT_EQ(DateText::longDate(1795305600), "November 21, 2026");
        // Summer time: 06:59 UTC on 1 July is still 30 June there, 07:00 is not.
        EXPECT_EQ(DateText::longDate(1782889140), "June 30, 2026");
        EXPECT_EQ(DateText::longDate(1782889200), "July 1, 2026");
        EXPECT_EQ(DateText::longDate(-62135596800.0), std::nullopt);  // the year 0 there
    }
}

TEST(DateTextTest, DatesOutsideTheCalendarGiveNil) {
    const test::ScopedTimeZone utc("UTC0");
    EXPECT_EQ(DateText::longDate(253402300800.0), std::nullopt);
    EXPECT_EQ(DateText::longDate(-62135596801.0), std::nullopt);
    EXPECT_EQ(DateText::longDate(1e300), std::nullopt);
    EXPECT_EQ(DateText::longDate(-1e300), std::nullopt);
    EXPECT_EQ(DateText::longDate(std::nan("")), std::nullopt);
    EXPECT_EQ(DateText::longDate(INFINITY), std::nullopt);
}

TEST(DateTextTest, MicrosecondTimestampsReadExactlyInTheDevicesZone) {
    {
        const test::ScopedTimeZone utc("UTC0");
        const auto parsed = DateText::parseMicrosecondTimestamp("2026-11-22T08:30:15.250000");
        ASSERT_TRUE(parsed.has_value());
        EXPECT_DOUBLE_EQ(*parsed, 1795336215.25);
        EXPECT_EQ(DateText::parseMicrosecondTimestamp("1970-01-01T00:00:00.000000"), 0.0);
        EXPECT_EQ(DateText::parseMicrosecondTimestamp("1969-12-31T23:59:59.000000"), -1.0);
        EXPECT_TRUE(DateText::parseMicrosecondTimestamp("2000-02-29T23:59:59.999999"));
    }
    {
        const test::ScopedTimeZone tokyo("JST-9");
        EXPECT_EQ(DateText::parseMicrosecondTimestamp("2026-11-22T08:30:15.250000"),
                  1795336215.25 - 9 * 3600);
    }
    {
        const test::ScopedTimeZone pacific("PST8PDT,M3.2.0,M11.1.0");
        EXPECT_EQ(DateText::parseMicrosecondTimestamp("2026-11-22T08:30:15.250000"),
                  1795336215.25 + 8 * 3600);
        // 1 July 2026 12:00 in summer time is 19:00 UTC.
        EXPECT_EQ(DateText::parseMicrosecondTimestamp("2026-07-01T12:00:00.000000"), 1782932400.0);
    }
}

TEST(DateTextTest, MicrosecondTimestampsRefuseOtherShapes) {
    for (const char* text : {
             "",
             "2026-11-22T08:30:15",          // no fraction
             "2026-11-22T08:30:15.25",       // too few digits
             "2026-11-22T08:30:15.250000Z",  // a zone after
             "2026-11-22 08:30:15.250000",   // no T
             "2026-13-22T08:30:15.250000",   // month 13
             "2026-02-29T08:30:15.250000",   // not a leap year
             "2026-11-31T08:30:15.250000",   // November has 30 days
             "2026-11-22T24:00:00.000000",   // hour 24
             "2026-11-22T08:60:00.000000",   // minute 60
             "0000-01-01T00:00:00.000000",   // year 0
             "2026-1a-22T08:30:15.250000",   // letter
             "-026-11-22T08:30:15.250000",   // sign
         }) {
        EXPECT_EQ(DateText::parseMicrosecondTimestamp(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace tb
