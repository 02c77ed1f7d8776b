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

// The one context of the store, used on the main queue only (a debug build stops the
// process when another thread uses it).
//
// Changes are tracked as they are made: inserts and deletes by the calls that make them, and
// changes to a record's fields when the record is told of them (`ManagedObject::didChange`,
// or by naming it to `saveChangesOf`). A save writes exactly those, in one transaction, and
// looks at no other record: it costs what changed, however many records are held.
//
// Identity: while anyone holds a record, fetching its row again gives the same object, so a
// flag set on an item is seen by every list that holds it. The context keeps no record alive
// for that (it holds weak references), and the last reference to a record may go on any
// thread. A record with unsaved changes is kept by the context until the next save,
// rollback or reset.
//
// Fetches and counts see the pending changes: inserted records that match, changed fields,
// and no deleted records.
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

    // A new record of the entity that belongs to this context without being inserted: what
    // the app makes while reading (an album's tracks, a queue restored from the bookmarks).
    // A change to it (didChange) makes it a pending insert, a row at the next save; one that
    // is let go unchanged leaves nothing behind, so reading never grows the store.
    std::shared_ptr<ManagedObject> makeObject(const EntityDescription& entity);
    template <class T>
    std::shared_ptr<T> makeObject() {
        return std::static_pointer_cast<T>(makeObject(T::entityDescription()));
    }

    // Marks the record's row for deletion at the next save. Records of no context (or of
    // another) are ignored.
    void deleteObject(const std::shared_ptr<ManagedObject>& record);

    // Marks the record as changed: its fields are written by the next save. Records of no
    // context (or of another), inserted and deleted ones are ignored.
    void objectDidChange(ManagedObject& record);

    // Writes every insert, change and delete in one transaction; on failure nothing is
    // written and the changes stay pending. A store whose index is found damaged on the way
    // has its indexes rebuilt from the rows, and the save is tried once more.
    bool save(Error* error = nullptr);
    // The same save, after marking the named records as changed (see objectDidChange).
    bool saveChangesOf(const std::vector<std::shared_ptr<ManagedObject>>& records,
                       Error* error = nullptr);
    bool hasChanges() const;
    // Drops pending inserts (the records become detached), undoes pending deletes, and reads
    // changed records back from their rows.
    void rollback();
    // Forgets every record: pending changes are dropped and all records become detached.
    void reset();

    // Records the context knows now (held by someone, or kept for their changes, inserted, or
    // made here and still unchanged).
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

    bool fetchInto(const FetchRequest& request,
                   const EntityDescription* expected,
                   ResultSink& sink,
                   Error* error);
    std::shared_ptr<ManagedObject> insert(const EntityDescription& entity);

    std::unique_ptr<Impl> impl_;
};

}  // namespace tb
