#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tb {

// The time frames of the charts.
enum class TBPeriod { daily, weekly, monthly, yearly, total };

inline constexpr std::array<TBPeriod, 5> kAllPeriods = {
    TBPeriod::daily, TBPeriod::weekly, TBPeriod::monthly, TBPeriod::yearly, TBPeriod::total};

// "daily", "weekly", "monthly", "yearly", "total": the words the chart paths use.
std::string rawValue(TBPeriod period);
std::optional<TBPeriod> periodFromRawValue(std::string_view value);

// The localisation key of the filter's label ("filters_section_timeframe_today", ...).
std::string displayKey(TBPeriod period);
std::string displayText(TBPeriod period);

}  // namespace tb
