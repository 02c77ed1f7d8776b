#pragma once

#include <memory>
#include <vector>

namespace tb {

class ManagedObject;

// The context's pending changes, kept as they are made: records inserted, records named as
// changed, records deleted. A save writes these and looks at nothing else, so that it costs
// what changed, not what is held. Each list holds its records strongly until the save (or a
// rollback), so a changed record whose last outside reference goes is not lost.
class ChangeTracker {
  public:
    ChangeTracker();
    ~ChangeTracker();

    void inserted(std::shared_ptr<ManagedObject> record);
    // Once per record until the next save; a record that is inserted or deleted is written
    // as such, and is not added.
    void changed(std::shared_ptr<ManagedObject> record);
    void deleted(std::shared_ptr<ManagedObject> record);
    // Takes an inserted record out again (it was deleted before any save).
    void dropInserted(const ManagedObject& record);

    const std::vector<std::shared_ptr<ManagedObject>>& inserts() const { return inserts_; }
    const std::vector<std::shared_ptr<ManagedObject>>& updates() const { return updates_; }
    const std::vector<std::shared_ptr<ManagedObject>>& deletes() const { return deletes_; }
    bool empty() const { return inserts_.empty() && updates_.empty() && deletes_.empty(); }

    struct Pending {
        std::vector<std::shared_ptr<ManagedObject>> inserts;
        std::vector<std::shared_ptr<ManagedObject>> updates;
        std::vector<std::shared_ptr<ManagedObject>> deletes;
    };
    // Every pending change; the tracker is left empty. The records keep their flags.
    Pending take();

  private:
    std::vector<std::shared_ptr<ManagedObject>> inserts_;
    std::vector<std::shared_ptr<ManagedObject>> updates_;
    std::vector<std::shared_ptr<ManagedObject>> deletes_;
};

}  // namespace tb
