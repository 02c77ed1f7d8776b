#pragma once

#include <optional>
#include <string>

namespace tb {

// What the analytics report about the listener's connection.
class TelcoDataSource {
  public:
    virtual ~TelcoDataSource() = default;
    // The mobile carrier's name; nothing when there is none.
    virtual std::optional<std::string> carrierName() const = 0;
    virtual bool isWifi() const = 0;
};

}  // namespace tb
