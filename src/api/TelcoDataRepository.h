#pragma once

#include "api/TelcoDataSource.h"

namespace tb {

class TBReachabilityManager;

// The connection facts on this platform. A desktop has no SIM and no mobile carrier, so the
// carrier name is always absent. "Wi-Fi" means what the reachability reports as a link that
// is not a mobile one (any wired or wireless network), which is true too when nothing watches
// the network.
class TelcoDataRepository final : public TelcoDataSource {
  public:
    explicit TelcoDataRepository(const TBReachabilityManager& reachability);

    std::optional<std::string> carrierName() const override;
    bool isWifi() const override;

  private:
    const TBReachabilityManager& reachability_;
};

}  // namespace tb
