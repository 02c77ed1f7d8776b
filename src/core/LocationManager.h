#pragma once

#include <optional>

namespace tb {

// A position on the globe, in degrees.
struct Location {
    double latitude = 0.0;
    double longitude = 0.0;
};

// The listener's location, for ad targeting. Linux gives the app no location service, so
// the manager is never enabled and knows no location; its callers keep working without one.
class LocationManager {
  public:
    LocationManager() = default;

    static LocationManager& shared();

    bool isEnabled() const { return false; }
    const std::optional<Location>& currentLocation() const { return currentLocation_; }

    // Would start location updates (500 m distance filter) where the system allows them;
    // there is no location service to ask on Linux, so there is nothing to start.
    void updateLocation() {}

  private:
    std::optional<Location> currentLocation_;
};

}  // namespace tb
