#include "model/store/UnmarkedChangeCheck.h"

#include <cstdlib>
#include <string>

#include "model/store/AttributeDescription.h"
#include "model/store/EntityDescription.h"
#include "model/store/FieldAccess.h"
#include "model/store/FieldOps.h"
#include "model/store/RecordState.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

bool checkingAsked() {
#ifndef NDEBUG
    return true;
#else
    const char* asked = std::getenv("TB_STORE_CHECK_MARKS");
    return asked && *asked && std::string(asked) != "0";
#endif
}

// The record's own fields. The records nested in a list field (an album's tracks) are left
// out: each is a record of its own, marked on its own, and setting a flag on a track changes
// nothing of its album's row.
std::uint64_t fingerprint(const ManagedObject& record) {
    std::uint64_t seed = FieldOps::kRecordSeed;
    for (const AttributeDescription& attribute : record.entity().attributes()) {
        if (attribute.kind() != FieldKind::recordArray) {
            seed = FieldOps::combine(seed, FieldOps::hash(attribute, attribute.field(record)));
        }
    }
    return seed;
}

}  // namespace

UnmarkedChangeCheck::UnmarkedChangeCheck() : enabled_(checkingAsked()) {}

void UnmarkedChangeCheck::remember(const std::shared_ptr<ManagedObject>& record) {
    if (!enabled_ || !record) {
        return;
    }
    auto known = prints_.find(record.get());
    if (known != prints_.end() && !known->second.record.expired()) {
        return;  // the same record, already known: a change since then must stay visible
    }
    refresh(record);
}

void UnmarkedChangeCheck::refresh(const std::shared_ptr<ManagedObject>& record) {
    if (enabled_ && record) {
        prints_[record.get()] = Print{record, fingerprint(*record)};
    }
}

void UnmarkedChangeCheck::verify(const ObjectContext& owner) {
    for (auto entry = prints_.begin(); entry != prints_.end();) {
        const auto record = entry->second.record.lock();
        if (!record) {
            if (entry->second.unmarked) {
                stop(nullptr);
            }
            entry = prints_.erase(entry);
            continue;
        }
        if (RecordState::context(*record) != &owner) {
            entry = prints_.erase(entry);
            continue;
        }
        entry->second.unmarked = changedUnmarked(*record, entry->second);
        ++entry;
    }
}

void UnmarkedChangeCheck::clear() {
    prints_.clear();
}

void UnmarkedChangeCheck::finish() {
    for (const auto& [address, print] : prints_) {
        if (!print.unmarked) {
            continue;
        }
        const auto record = print.record.lock();
        if (!record || changedUnmarked(*record, print)) {
            stop(record.get());
        }
    }
    prints_.clear();
}

bool UnmarkedChangeCheck::changedUnmarked(const ManagedObject& record, const Print& print) const {
    constexpr auto kMarked = RecordState::kInserted | RecordState::kDeleted |
                             RecordState::kChanged | RecordState::kProvisional;
    return !RecordState::has(record, kMarked) && fingerprint(record) != print.hash;
}

void UnmarkedChangeCheck::stop(const ManagedObject* record) {
    const std::string what =
        record ? "A stored " + record->entity().name() + " record" : "A stored record";
    TB_FATAL(what + " was changed without didChange(): its change was never saved");
}

}  // namespace tb
