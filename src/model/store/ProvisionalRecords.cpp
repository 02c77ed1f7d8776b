#include "model/store/ProvisionalRecords.h"

#include <algorithm>

#include "model/store/RecordState.h"

namespace tb {

namespace {

bool gone(const std::weak_ptr<ManagedObject>& weak) {
    const auto record = weak.lock();
    return !record || !record->isProvisional();
}

}  // namespace

void ProvisionalRecords::add(const std::shared_ptr<ManagedObject>& record) {
    if (records_.size() >= sweepAt_) {
        // Browsing makes and drops many: keep the list to about twice what is alive.
        sweep();
        sweepAt_ = std::max<std::size_t>(64, records_.size() * 2);
    }
    records_.push_back(record);
}

void ProvisionalRecords::detachAll() {
    for (const auto& weak : records_) {
        if (const auto record = weak.lock(); record && record->isProvisional()) {
            RecordState::detach(*record);
        }
    }
    records_.clear();
}

std::size_t ProvisionalRecords::size() {
    sweep();
    return records_.size();
}

void ProvisionalRecords::sweep() {
    records_.erase(std::remove_if(records_.begin(), records_.end(), gone), records_.end());
}

}  // namespace tb
