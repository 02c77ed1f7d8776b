#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ConnectionLimits.h"
#include "tunebrook-service/media/MediaGenerator.h"

namespace tb::service {

struct ServiceOptions {
    std::string dataDir;
    int port = 0;  // 0 picks a free one
    uint64_t seed = 1;
    bool seedGiven = false;
    std::vector<std::string> faults;  // fault rules as written after --fault
    std::string mediaCache;           // shared folder of made media, "" for none
    MediaMode media = MediaMode::synthesize;
    ServiceSettings settings;
    ConnectionLimits connections;
    std::function<double()> now;                       // wall clock by default
    std::function<void(const std::string&)> progress;  // standard error by default
};

}  // namespace tb::service
