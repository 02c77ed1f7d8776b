#include "core/TBLogger.h"

#include "platform/Log.h"
#include "platform/SharedInstance.h"

namespace tb {

TBLogger& TBLogger::sharedInstance() {
    return SharedInstance<TBLogger>::get();
}

void TBLogger::log(const std::string& text) {
    logLine(text);
}

void TBLogger::inMemoryLog(const std::string& text, const std::string& tag) {
    inMemoryLog_[tag].push_back(text);
}

}  // namespace tb
