#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace tb {

class ManagedObject;

// One object per row: the records of the context's rows that someone still holds, by entity
// (its index in the model) and rowid.
//
// The map holds weak references only, and a record's destructor never comes here: the last
// reference to a record may go on any thread. Entries of records that are gone are dropped
// on the main queue, when they are met and in a sweep once the map has doubled since the
// last one, so that the sweeps cost nothing per call on average.
class IdentityMap {
  public:
    explicit IdentityMap(std::size_t entities);

    // The live record of the row, or null.
    std::shared_ptr<ManagedObject> find(std::size_t entity, std::int64_t rowID);
    void add(std::size_t entity, std::int64_t rowID, const std::shared_ptr<ManagedObject>& record);
    void erase(std::size_t entity, std::int64_t rowID);

    // Every live record; the map is left empty.
    std::vector<std::shared_ptr<ManagedObject>> takeAll();
    // Every live record of the entity (the map keeps them).
    std::vector<std::shared_ptr<ManagedObject>> live(std::size_t entity);

    // Entries, counting those of records gone since the last sweep.
    std::size_t size() const;
    // Drops the entries of records that are gone.
    void sweep();

  private:
    using Rows = std::unordered_map<std::int64_t, std::weak_ptr<ManagedObject>>;
    std::vector<Rows> rows_;
    std::size_t entries_ = 0;
    std::size_t nextSweep_ = kFirstSweep;
    static constexpr std::size_t kFirstSweep = 1024;
};

}  // namespace tb
