#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tb {

class EntityDescription;
class ObjectContext;

// Base of every stored entity record (Item, Artist, CachedItem, ...). The records themselves
// are plain structs with public fields named as the attributes; this base only carries the
// store's bookkeeping. A record made by `new`/make_shared belongs to no context (detached);
// records that a context fetched or inserted belong to it; a copy of a record is always
// detached.
class ManagedObject {
  public:
    virtual ~ManagedObject();

    // The entity this record is an instance of, with its attribute table.
    virtual const EntityDescription& entity() const = 0;

    // True when the record belongs to a context (was fetched or inserted there).
    bool isManaged() const { return context_ != nullptr; }
    // True when the record was deleted from its context (until the next save, and after).
    bool isDeleted() const { return (flags_ & kDeleted) != 0; }
    // True when the record was inserted into its context and not saved yet.
    bool isInserted() const { return (flags_ & kInserted) != 0; }

  protected:
    ManagedObject() = default;
    ManagedObject(const ManagedObject&) noexcept {}  // copies are detached
    ManagedObject& operator=(const ManagedObject&) noexcept { return *this; }

  private:
    friend class ObjectContext;
    static constexpr std::uint8_t kInserted = 1;
    static constexpr std::uint8_t kDeleted = 2;
    static constexpr std::uint8_t kPartial = 4;  // fetched with some properties only

    // The store's bookkeeping. The snapshot is a hash of the stored values as last read or
    // written, so that the context can tell a changed record from an unchanged one. A
    // partial record keeps one hash per attribute it has read or written instead.
    ObjectContext* context_ = nullptr;
    std::int64_t rowID_ = 0;
    std::uint64_t snapshot_ = 0;
    std::vector<std::pair<std::int32_t, std::uint64_t>> partialSnapshot_;
    std::uint8_t flags_ = 0;
};

}  // namespace tb
