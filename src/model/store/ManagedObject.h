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
class ManagedObject : public std::enable_shared_from_this<ManagedObject> {
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
    // True when the record was made in its context while reading (ObjectContext::makeObject)
    // and has not been changed since: it is no row, and becomes none unless it is changed.
    bool isProvisional() const { return (flags_ & kProvisional) != 0; }

    // Tells the record's context that fields of this record were set, so that its next save
    // writes them (and fetches until then see them). Records are plain structs: the context
    // can't see a field being set, and looks at no record that was not named this way. Does
    // nothing on a detached record. Main queue only.
    void didChange();
    // True when the record has changes its context has not saved yet.
    bool hasChanges() const { return (flags_ & (kInserted | kChanged)) != 0; }

  protected:
    ManagedObject() = default;
    ManagedObject(const ManagedObject&) noexcept
        : std::enable_shared_from_this<ManagedObject>() {}  // copies are detached
    ManagedObject& operator=(const ManagedObject&) noexcept { return *this; }

  private:
    friend class RecordState;
    static constexpr std::uint8_t kInserted = 1;
    static constexpr std::uint8_t kDeleted = 2;
    static constexpr std::uint8_t kPartial = 4;       // fetched with some properties only
    static constexpr std::uint8_t kChanged = 8;       // named as changed since the last save
    static constexpr std::uint8_t kProvisional = 16;  // made in the context, not inserted

    // The store's bookkeeping, read and written by the context on the main queue only. The
    // record's destructor touches none of it, so the last reference may go on any thread.
    // A partial record keeps one hash per attribute it has read or written, to tell which of
    // its fields were set (the others hold defaults, not the row's values).
    ObjectContext* context_ = nullptr;
    std::int64_t rowID_ = 0;
    std::vector<std::pair<std::int32_t, std::uint64_t>> partialSnapshot_;
    std::uint8_t flags_ = 0;
};

}  // namespace tb
