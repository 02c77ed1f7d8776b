#pragma once

#include <cstdint>
#include <memory>

namespace tb {

class EntityDescription;
class ObjectContext;

// Base of every stored entity record (Item, Artist, CachedItem, ...). The records themselves
// are plain structs with public fields named as the attributes; this base only carries the
// store's bookkeeping. A record made by `new`/make_shared belongs to no context (detached)
// until the context inserts it; a copy of a record is always detached.
class ManagedObject {
public:
    virtual ~ManagedObject();

    // The entity this record is an instance of, with its attribute table.
    virtual const EntityDescription& entity() const = 0;

    // True when the record belongs to a context (was fetched or inserted there).
    bool isManaged() const;
    // True when the record was deleted from its context (until the next save, and after).
    bool isDeleted() const;

protected:
    ManagedObject() = default;
    ManagedObject(const ManagedObject&) noexcept {}  // copies are detached
    ManagedObject& operator=(const ManagedObject&) noexcept { return *this; }

private:
    friend class ObjectContext;
    struct Bookkeeping;
    std::shared_ptr<Bookkeeping> bookkeeping_;
};

}  // namespace tb
