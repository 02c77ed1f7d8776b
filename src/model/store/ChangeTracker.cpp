#include "model/store/ChangeTracker.h"

#include <algorithm>
#include <utility>

#include "model/store/RecordState.h"

namespace tb {

ChangeTracker::ChangeTracker() = default;
ChangeTracker::~ChangeTracker() = default;

void ChangeTracker::inserted(std::shared_ptr<ManagedObject> record) {
    RecordState::set(*record, RecordState::kInserted);
    inserts_.push_back(std::move(record));
}

void ChangeTracker::changed(std::shared_ptr<ManagedObject> record) {
    constexpr auto kWritten =
        RecordState::kInserted | RecordState::kDeleted | RecordState::kChanged;
    if (RecordState::has(*record, kWritten)) {
        return;
    }
    RecordState::set(*record, RecordState::kChanged);
    updates_.push_back(std::move(record));
}

void ChangeTracker::deleted(std::shared_ptr<ManagedObject> record) {
    RecordState::set(*record, RecordState::kDeleted);
    deletes_.push_back(std::move(record));
}

void ChangeTracker::dropInserted(const ManagedObject& record) {
    std::erase_if(inserts_, [&](const auto& entry) { return entry.get() == &record; });
}

ChangeTracker::Pending ChangeTracker::take() {
    Pending pending{std::move(inserts_), std::move(updates_), std::move(deletes_)};
    inserts_.clear();
    updates_.clear();
    deletes_.clear();
    return pending;
}

}  // namespace tb
