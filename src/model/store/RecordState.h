#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "model/store/ManagedObject.h"

namespace tb {

class ObjectContext;

// The context's access to the bookkeeping that every record carries.
class RecordState {
  public:
    static constexpr std::uint8_t kInserted = ManagedObject::kInserted;
    static constexpr std::uint8_t kDeleted = ManagedObject::kDeleted;
    static constexpr std::uint8_t kPartial = ManagedObject::kPartial;
    static constexpr std::uint8_t kChanged = ManagedObject::kChanged;
    static constexpr std::uint8_t kProvisional = ManagedObject::kProvisional;

    static ObjectContext* context(const ManagedObject& record) { return record.context_; }
    static void setContext(ManagedObject& record, ObjectContext* context) {
        record.context_ = context;
    }
    static std::int64_t rowID(const ManagedObject& record) { return record.rowID_; }
    static void setRowID(ManagedObject& record, std::int64_t rowID) { record.rowID_ = rowID; }
    static std::vector<std::pair<std::int32_t, std::uint64_t>>& partial(ManagedObject& record) {
        return record.partialSnapshot_;
    }

    static bool has(const ManagedObject& record, std::uint8_t flags) {
        return (record.flags_ & flags) != 0;
    }
    static void set(ManagedObject& record, std::uint8_t flags) { record.flags_ |= flags; }
    static void clear(ManagedObject& record, std::uint8_t flags) {
        record.flags_ &= static_cast<std::uint8_t>(~flags);
    }

    // The record belongs to no context from now on; a deleted one stays marked deleted.
    static void detach(ManagedObject& record) {
        record.context_ = nullptr;
        record.rowID_ = 0;
        clear(record, kInserted | kPartial | kChanged | kProvisional);
        record.partialSnapshot_.clear();
    }
};

}  // namespace tb
