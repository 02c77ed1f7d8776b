#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace tb {

class ManagedObject;
class ObjectContext;

// Guards against the one way a change to the store can be lost: a field set on a stored
// record without telling its context (didChange), which the next save would never write.
// When on (a debug build, or TB_STORE_CHECK_MARKS set in the environment, as the tests run)
// it keeps a fingerprint of each record as it was read or saved. A save that meets a record
// that no longer matches without having been marked notes it: it may still be marked and
// saved later, as a writer that changes several records and marks them at the end does. The
// process stops when such a record is let go, or its context goes, with the change still
// unmarked: that change would have been lost. Off, it keeps nothing and costs nothing, so
// release builds still save at the cost of what changed.
class UnmarkedChangeCheck {
  public:
    UnmarkedChangeCheck();

    bool enabled() const { return enabled_; }
    // The record as it is now is what the store holds; a known one keeps its fingerprint.
    void remember(const std::shared_ptr<ManagedObject>& record);
    // The same, replacing what was known (after a save wrote the record).
    void refresh(const std::shared_ptr<ManagedObject>& record);
    // Notes the records of `owner` changed without being marked; stops the process at one
    // noted before that is gone now.
    void verify(const ObjectContext& owner);
    // Forgets everything, as after a rollback that reads the records back.
    void clear();
    // The context goes: stops the process at a noted record whose change is still unmarked.
    void finish();

  private:
    struct Print {
        std::weak_ptr<ManagedObject> record;
        std::uint64_t hash = 0;
        bool unmarked = false;  // changed without being marked when a save met it
    };

    bool changedUnmarked(const ManagedObject& record, const Print& print) const;
    [[noreturn]] static void stop(const ManagedObject* record);

    std::unordered_map<const ManagedObject*, Print> prints_;
    bool enabled_ = false;
};

}  // namespace tb
