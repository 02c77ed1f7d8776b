#include "core/TBLogger.h"

#include "app/AppContext.h"

namespace tb {

TBLogger& TBLogger::sharedInstance() {
    return AppContext::current().singleton<TBLogger>();
}

void TBLogger::log(const std::string& /*text*/) {}

void TBLogger::inMemoryLog(const std::string& text, const std::string& tag) {
    inMemoryLog_[tag].push_back(text);
}

}  // namespace tb
