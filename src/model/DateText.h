#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/store/StoreTypes.h"

namespace tb {

// The dates of the service's answers, read and written in the device's time zone (the TZ
// of the process), as a date formatter with no zone of its own does.
class DateText {
  public:
    // A date in the "en_US" long style without a time: "November 22, 2026", the day it is
    // in the device's zone. Nil for a value that is not finite or whose local date lies
    // outside the years 1 to 9999.
    static std::optional<std::string> longDate(Date secondsSince1970);

    // Reads "yyyy-MM-dd'T'HH:mm:ss.SSSSSS" (exactly six fraction digits, nothing after),
    // as the notifications write "created_at", as a time of the device's zone. Nil for any
    // other text or an impossible date.
    static std::optional<Date> parseMicrosecondTimestamp(std::string_view text);
};

}  // namespace tb
