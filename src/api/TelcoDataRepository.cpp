#include "api/TelcoDataRepository.h"

#include "api/TBReachabilityManager.h"

namespace tb {

TelcoDataRepository::TelcoDataRepository(const TBReachabilityManager& reachability)
    : reachability_(reachability) {}

std::optional<std::string> TelcoDataRepository::carrierName() const {
    return std::nullopt;
}

bool TelcoDataRepository::isWifi() const {
    return reachability_.isWiFiReachable();
}

}  // namespace tb
