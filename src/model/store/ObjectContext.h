#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/store/FetchRequest.h"
#include "model/store/ManagedObject.h"
#include "platform/Error.h"

namespace tb {

class EntityDescription;
class PersistentStoreCoordinator;

// The one context of the store, used on the main queue only.
//
// Records are plain structs, so the context finds what changed by itself: for each record
// it fetched or saved it keeps a hash of the stored values, and `save` writes the records
// whose values no longer hash the same, with the inserts and deletes, in one transaction.
// Finding them means hashing every record the context knows, so that save costs in
// proportion to what is held (a long list held on screen makes every save slow). A writer
// that knows which records it changed names them to `saveChangesOf`, which looks at those
// alone and so costs what the changes cost.
//
// Identity: while anyone holds a record, fetching its row again gives the same object.
// A record whose last reference goes away with unsaved changes is not lost: the context
// keeps it (and its changes) until the next save, rollback or reset.
//
// Queries read the saved rows. Pending deletes are left out of fetches and counts at once;
// pending inserts and changes to field values count from the save on (the app saves right
// after it changes rows).
//
// A record fetched with properties-to-fetch holds defaults in its other fields. Saving it
// writes the fetched fields that changed and the others that were changed away from their
// default.
class ObjectContext {
  public:
    explicit ObjectContext(std::shared_ptr<PersistentStoreCoordinator> coordinator);
    ~ObjectContext();
    ObjectContext(const ObjectContext&) = delete;
    ObjectContext& operator=(const ObjectContext&) = delete;

    const std::shared_ptr<PersistentStoreCoordinator>& persistentStoreCoordinator() const;

    // Nil (and the error) when the fetch fails.
    std::optional<std::vector<std::shared_ptr<ManagedObject>>> executeFetchRequest(
        const FetchRequest& request,
        Error* error = nullptr);

    // The same, typed: the request's entity must be T's.
    template <class T>
    std::optional<std::vector<std::shared_ptr<T>>> fetch(const FetchRequest& request,
                                                         Error* error = nullptr) {
        std::vector<std::shared_ptr<T>> records;
        TypedSink<T> sink(records);
        if (!fetchInto(request, &T::entityDescription(), sink, error)) {
            return std::nullopt;
        }
        return records;
    }

    // The number of rows the request would fetch, without reading them. Nil on failure.
    std::optional<std::int64_t> countForFetchRequest(const FetchRequest& request,
                                                     Error* error = nullptr);

    // A new record of the entity, inserted: it becomes a row at the next save.
    std::shared_ptr<ManagedObject> insertNewObjectForEntityForName(std::string_view entityName);
    template <class T>
    std::shared_ptr<T> insertNewObject() {
        return std::static_pointer_cast<T>(insert(T::entityDescription()));
    }

    // Marks the record's row for deletion at the next save. Records of no context (or of
    // another) are ignored.
    void deleteObject(const std::shared_ptr<ManagedObject>& record);

    // Writes every insert, change and delete in one transaction; on failure nothing is
    // written and the changes stay pending.
    bool save(Error* error = nullptr);
    // The same save, for a writer that names the records it changed: those, every insert,
    // every delete and every record kept for its changes are written; no other record is
    // looked at. A change to a record not named stays pending until the next save(), or
    // until its record is let go (it is then kept, and written by the next save of either
    // kind). Records of no context, or of another, are ignored.
    bool saveChangesOf(const std::vector<std::shared_ptr<ManagedObject>>& records,
                       Error* error = nullptr);
    bool hasChanges() const;
    // Drops pending inserts (the records become detached), undoes pending deletes, and reads
    // changed records back from their rows.
    void rollback();
    // Forgets every record: pending changes are dropped and all records become detached.
    void reset();

    // Records the context knows now (held by someone, or kept for their changes).
    std::size_t registeredObjectCount() const;

    class ResultSink {
      public:
        virtual ~ResultSink() = default;
        virtual void add(std::shared_ptr<ManagedObject> record) = 0;
    };

  private:
    template <class T>
    class TypedSink final : public ResultSink {
      public:
        explicit TypedSink(std::vector<std::shared_ptr<T>>& out) : out_(out) {}
        void add(std::shared_ptr<ManagedObject> record) override {
            out_.push_back(std::static_pointer_cast<T>(std::move(record)));
        }

      private:
        std::vector<std::shared_ptr<T>>& out_;
    };

    struct Impl;
    friend struct Impl;

    bool fetchInto(const FetchRequest& request,
                   const EntityDescription* expected,
                   ResultSink& sink,
                   Error* error);
    std::shared_ptr<ManagedObject> insert(const EntityDescription& entity);
    // The deleter of every record the context hands out.
    static void release(ManagedObject* record);

    // Bookkeeping access for Impl (ManagedObject befriends this class only).
    static ObjectContext*& contextOf(ManagedObject& record) { return record.context_; }
    static std::int64_t& rowIDOf(ManagedObject& record) { return record.rowID_; }
    static std::uint64_t& snapshotOf(ManagedObject& record) { return record.snapshot_; }
    static std::vector<std::pair<std::int32_t, std::uint64_t>>& partialOf(ManagedObject& record) {
        return record.partialSnapshot_;
    }
    static std::uint8_t& flagsOf(ManagedObject& record) { return record.flags_; }
    static constexpr std::uint8_t kInserted = ManagedObject::kInserted;
    static constexpr std::uint8_t kDeleted = ManagedObject::kDeleted;
    static constexpr std::uint8_t kPartial = ManagedObject::kPartial;

    std::unique_ptr<Impl> impl_;
};

}  // namespace tb
