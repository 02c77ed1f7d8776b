#pragma once

#include <optional>

namespace tb {

// The three-state status the service and the action buttons share: off, on, and on its way
// (a request is out; a press does nothing meanwhile).
enum class APIStatus : int {
    off = 0,
    on = 1,
    inProgress = 2,
};

// The status of a raw value; any value but 0, 1 and 2 is refused.
std::optional<APIStatus> apiStatusFromRaw(long long raw);

}  // namespace tb
