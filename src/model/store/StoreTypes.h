#pragma once

#include <cstdint>
#include <string>

namespace tb {

// Seconds since 1970, as dates are kept in the store.
using Date = double;

// Raw bytes held by an attribute (such as `mixpanelSourceJSON`).
struct Data {
    std::string bytes;
    bool operator==(const Data&) const = default;
};

}  // namespace tb
