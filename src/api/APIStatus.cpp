#include "api/APIStatus.h"

namespace tb {

std::optional<APIStatus> apiStatusFromRaw(long long raw) {
    switch (raw) {
        case 0:
            return APIStatus::off;
        case 1:
            return APIStatus::on;
        case 2:
            return APIStatus::inProgress;
        default:
            return std::nullopt;
    }
}

}  // namespace tb
