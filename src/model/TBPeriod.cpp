#include "model/TBPeriod.h"

#include "core/TBLocalization.h"

namespace tb {

namespace {

struct PeriodNames {
    const char* value;
    const char* displayKey;
};

constexpr std::array<PeriodNames, 5> kNames = {{
    {"daily", "filters_section_timeframe_today"},
    {"weekly", "filters_section_timeframe_week"},
    {"monthly", "filters_section_timeframe_month"},
    {"yearly", "filters_section_timeframe_year"},
    {"total", "filters_section_timeframe_alltime"},
}};

const PeriodNames& namesOf(TBPeriod period) {
    return kNames[static_cast<size_t>(period)];
}

}  // namespace

std::string rawValue(TBPeriod period) {
    return namesOf(period).value;
}

std::optional<TBPeriod> periodFromRawValue(std::string_view value) {
    for (const TBPeriod period : kAllPeriods) {
        if (value == namesOf(period).value) {
            return period;
        }
    }
    return std::nullopt;
}

std::string displayKey(TBPeriod period) {
    return namesOf(period).displayKey;
}

std::string displayText(TBPeriod period) {
    return TBLocalization::localizedString(displayKey(period));
}

}  // namespace tb
