#include "core/TBLogViewerViewModel.h"

#include "core/TBLogger.h"

namespace tb {

TBLogViewerViewModel::TBLogViewerViewModel(const TBLogger& logger) : logger_(logger) {}

void TBLogViewerViewModel::load() {
    const auto& log = logger_.inMemoryLog();
    const auto found = log.find(kTag);
    data_.clear();
    if (found != log.end()) {
        data_.assign(found->second.rbegin(), found->second.rend());
    }
    if (onReload) {
        onReload();
    }
}

void TBLogViewerViewModel::refresh() {
    load();
    if (onEndRefreshing) {
        onEndRefreshing();
    }
}

}  // namespace tb
