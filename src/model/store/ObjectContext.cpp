#include "model/store/ObjectContext.h"

#include <algorithm>
#include <thread>

#include <sqlite3.h>

#include "model/store/ChangeTracker.h"
#include "model/store/ContextEntities.h"
#include "model/store/EntityDescription.h"
#include "model/store/FetchExecutor.h"
#include "model/store/IdentityMap.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "model/store/ProvisionalRecords.h"
#include "model/store/RecordState.h"
#include "model/store/SaveWriter.h"
#include "model/store/SqliteError.h"
#include "model/store/StoreConnection.h"
#include "model/store/UnmarkedChangeCheck.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

class VectorSink final : public ObjectContext::ResultSink {
  public:
    explicit VectorSink(std::vector<std::shared_ptr<ManagedObject>>& out) : out_(out) {}
    void add(std::shared_ptr<ManagedObject> record) override { out_.push_back(std::move(record)); }

  private:
    std::vector<std::shared_ptr<ManagedObject>>& out_;
};

bool affects(const ChangeTracker& changes, const EntityDescription& entity) {
    for (const auto* list : {&changes.inserts(), &changes.updates(), &changes.deletes()}) {
        for (const auto& record : *list) {
            if (&record->entity() == &entity) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

struct ObjectContext::Impl {
    Impl(ObjectContext& context, std::shared_ptr<PersistentStoreCoordinator> coordinator)
        : owner(context),
          connection(std::move(coordinator)),
          entities(connection.coordinator()->managedObjectModel()),
          identities(entities.size()),
          fetcher(context, connection, entities, identities),
          writer(connection, entities) {}

    void checkThread() const {
#ifndef NDEBUG
        if (std::this_thread::get_id() != maker) {
            TB_FATAL("The store's context was used off the main queue");
        }
#endif
    }

    bool connect(Error* error) {
        bool replaced = false;
        const bool connected = connection.connect(replaced, error);
        if (replaced) {
            fetcher.dropPlans();
            writer.dropStatements();
            forgetRows();  // rows of an earlier store mean nothing in this one
        }
        return connected;
    }

    // Runs `attempt` once more after the store's indexes were rebuilt, when it met a damaged
    // page that the rebuild may have been the cure for. The error of the last attempt wins.
    template <class Attempt>
    bool withIndexRepair(Attempt attempt, Error* error) {
        SqliteError failure;
        if (attempt(&failure)) {
            return true;
        }
        if (failure.code == SQLITE_CORRUPT && connection.coordinator()->repairIndexes(nullptr)) {
            bool replaced = false;
            connection.connect(replaced, nullptr);
            failure = SqliteError{};
            if (attempt(&failure)) {
                return true;
            }
        }
        if (error) {
            *error = connection.storeError(failure);
        }
        return false;
    }

    // Fetches see pending changes: they are written in a transaction that is undone once the
    // rows are read, and a row of a pending insert comes back as the inserted record.
    template <class Read>
    bool readWithPending(const ContextEntities::Entry& entry, SqliteError* failure, Read read) {
        if (!affects(changes, *entry.entity)) {
            return read(FetchExecutor::Pending{});
        }
        SaveWriter::Written written;
        if (!connection.begin(failure) || !writer.write(changes, written, failure, &entry)) {
            connection.rollback();
            return false;
        }
        FetchExecutor::Pending pending;
        for (std::size_t i = 0; i < changes.inserts().size(); ++i) {
            if (written.insertedRows[i] != 0) {
                pending.emplace(written.insertedRows[i], changes.inserts()[i]);
            }
        }
        const bool ok = read(pending);
        connection.rollback();
        return ok;
    }

    bool fetch(const FetchRequest& request,
               const EntityDescription* expected,
               ResultSink& sink,
               Error* error) {
        ContextEntities::Entry& entry = requestEntry(request, expected);
        if (!connect(error)) {
            return false;
        }
        std::vector<std::shared_ptr<ManagedObject>> records;
        const bool ok = withIndexRepair(
            [&](SqliteError* failure) {
                records.clear();
                VectorSink collected(records);
                return readWithPending(entry, failure, [&](const auto& pending) {
                    return fetcher.fetch(request, entry, collected, pending, failure);
                });
            },
            error);
        for (auto& record : records) {
            marks.remember(record);
            sink.add(std::move(record));
        }
        return ok;
    }

    std::optional<std::int64_t> count(const FetchRequest& request, Error* error) {
        ContextEntities::Entry& entry = requestEntry(request, nullptr);
        if (!connect(error)) {
            return std::nullopt;
        }
        std::optional<std::int64_t> result;
        withIndexRepair(
            [&](SqliteError* failure) {
                return readWithPending(entry, failure, [&](const auto&) {
                    result = fetcher.count(request, entry, failure);
                    return result.has_value();
                });
            },
            error);
        return result;
    }

    ContextEntities::Entry& requestEntry(const FetchRequest& request,
                                         const EntityDescription* expected) {
        ContextEntities::Entry* entry = entities.named(request.entityName);
        if (!entry) {
            TB_FATAL("The fetch request names the entity '" + request.entityName +
                     "', which is not in the store's model");
        }
        if (expected && entry->entity != expected) {
            TB_FATAL("The fetch request for '" + request.entityName +
                     "' was asked for records of " + expected->name());
        }
        return *entry;
    }

    bool save(Error* error) {
        if (marks.enabled()) {
            marks.verify(owner);
        }
        if (!connect(error)) {
            return false;
        }
        if (changes.empty()) {
            return true;
        }
        SaveWriter::Written written;
        const bool ok = withIndexRepair(
            [&](SqliteError* failure) {
                written = SaveWriter::Written{};
                const bool done = connection.begin(failure) &&
                                  writer.write(changes, written, failure) &&
                                  connection.commit(failure);
                if (!done) {
                    connection.rollback();
                }
                return done;
            },
            error);
        if (ok) {
            afterCommit(written);
        }
        return ok;
    }

    void afterCommit(const SaveWriter::Written& written) {
        ChangeTracker::Pending saved = changes.take();
        for (std::size_t i = 0; i < saved.inserts.size(); ++i) {
            ManagedObject& record = *saved.inserts[i];
            RecordState::setRowID(record, written.insertedRows[i]);
            RecordState::clear(record, RecordState::kInserted);
            identities.add(entities.of(record).index, written.insertedRows[i], saved.inserts[i]);
            marks.refresh(saved.inserts[i]);
        }
        for (const auto& record : saved.updates) {
            RecordState::clear(*record, RecordState::kChanged);
            marks.refresh(record);
        }
        for (const auto& fields : written.partialFields) {
            auto& partial = RecordState::partial(*fields.record);
            for (auto [index, hash] : fields.hashes) {
                auto known = std::find_if(partial.begin(), partial.end(),
                                          [&](const auto& entry) { return entry.first == index; });
                if (known != partial.end()) {
                    known->second = hash;
                } else {
                    partial.emplace_back(index, hash);
                }
            }
        }
        for (const auto& record : saved.deletes) {
            identities.erase(entities.of(*record).index, RecordState::rowID(*record));
            RecordState::detach(*record);
        }
    }

    void rollback() {
        marks.clear();  // changed records are read back from their rows
        ChangeTracker::Pending pending = changes.take();
        for (const auto& record : pending.inserts) {
            RecordState::detach(*record);
        }
        for (const auto& record : pending.deletes) {
            RecordState::clear(*record, RecordState::kDeleted);
        }
        const bool connected = connect(nullptr);
        for (const auto& record : pending.updates) {
            RecordState::clear(*record, RecordState::kChanged);
            if (RecordState::context(*record) && !(connected && writer.reload(*record))) {
                identities.erase(entities.of(*record).index, RecordState::rowID(*record));
                RecordState::detach(*record);
            }
        }
    }

    void forgetRows() {
        for (const auto& record : identities.takeAll()) {
            RecordState::detach(*record);
        }
        for (const auto& record : changes.deletes()) {
            RecordState::detach(*record);
        }
        for (const auto& record : changes.updates()) {
            RecordState::detach(*record);
        }
        ChangeTracker::Pending pending = changes.take();
        for (const auto& record : pending.inserts) {
            changes.inserted(record);  // an insert has no row yet: it goes to the new store
        }
    }

    // A new record of the entity, belonging to this context and tracked nowhere yet.
    std::shared_ptr<ManagedObject> adopt(const EntityDescription& entity) {
        checkThread();
        entities.of(entity);  // the entity must be the model's
        std::shared_ptr<ManagedObject> record = entity.makeRecord();
        RecordState::setContext(*record, &owner);
        return record;
    }

    void reset() {
        marks.finish();
        provisional.detachAll();
        ChangeTracker::Pending pending = changes.take();
        for (const auto& record : pending.inserts) {
            RecordState::detach(*record);
        }
        for (const auto& record : pending.deletes) {
            RecordState::clear(*record, RecordState::kDeleted);
        }
        forgetRows();
    }

    ObjectContext& owner;
    StoreConnection connection;
    ContextEntities entities;
    IdentityMap identities;
    ChangeTracker changes;
    ProvisionalRecords provisional;
    UnmarkedChangeCheck marks;
    FetchExecutor fetcher;
    SaveWriter writer;
    std::thread::id maker = std::this_thread::get_id();
};

ObjectContext::ObjectContext(std::shared_ptr<PersistentStoreCoordinator> coordinator)
    : impl_(std::make_unique<Impl>(*this, std::move(coordinator))) {}

ObjectContext::~ObjectContext() {
    impl_->checkThread();
    impl_->reset();
}

const std::shared_ptr<PersistentStoreCoordinator>& ObjectContext::persistentStoreCoordinator()
    const {
    return impl_->connection.coordinator();
}

std::optional<std::vector<std::shared_ptr<ManagedObject>>> ObjectContext::executeFetchRequest(
    const FetchRequest& request,
    Error* error) {
    std::vector<std::shared_ptr<ManagedObject>> records;
    VectorSink sink(records);
    if (!fetchInto(request, nullptr, sink, error)) {
        return std::nullopt;
    }
    return records;
}

bool ObjectContext::fetchInto(const FetchRequest& request,
                              const EntityDescription* expected,
                              ResultSink& sink,
                              Error* error) {
    impl_->checkThread();
    return impl_->fetch(request, expected, sink, error);
}

std::optional<std::int64_t> ObjectContext::countForFetchRequest(const FetchRequest& request,
                                                                Error* error) {
    impl_->checkThread();
    return impl_->count(request, error);
}

std::shared_ptr<ManagedObject> ObjectContext::insertNewObjectForEntityForName(
    std::string_view entityName) {
    ContextEntities::Entry* entry = impl_->entities.named(entityName);
    if (!entry) {
        TB_FATAL("No entity named '" + std::string(entityName) + "' in the store's model");
    }
    return insert(*entry->entity);
}

std::shared_ptr<ManagedObject> ObjectContext::insert(const EntityDescription& entity) {
    std::shared_ptr<ManagedObject> record = impl_->adopt(entity);
    impl_->changes.inserted(record);
    return record;
}

std::shared_ptr<ManagedObject> ObjectContext::makeObject(const EntityDescription& entity) {
    std::shared_ptr<ManagedObject> record = impl_->adopt(entity);
    RecordState::set(*record, RecordState::kProvisional);
    impl_->provisional.add(record);
    return record;
}

void ObjectContext::deleteObject(const std::shared_ptr<ManagedObject>& record) {
    impl_->checkThread();
    if (!record || RecordState::context(*record) != this || record->isDeleted()) {
        return;
    }
    if (record->isInserted() || record->isProvisional()) {
        impl_->changes.dropInserted(*record);
        RecordState::detach(*record);
        RecordState::set(*record, RecordState::kDeleted);
        return;
    }
    impl_->changes.deleted(record);
}

void ObjectContext::objectDidChange(ManagedObject& record) {
    impl_->checkThread();
    constexpr auto kTracked =
        RecordState::kInserted | RecordState::kDeleted | RecordState::kChanged;
    if (RecordState::context(record) != this || RecordState::has(record, kTracked)) {
        return;
    }
    if (record.isProvisional()) {
        RecordState::clear(record, RecordState::kProvisional);
        RecordState::set(record, RecordState::kInserted);
        impl_->changes.inserted(record.shared_from_this());
        return;
    }
    auto held =
        impl_->identities.find(impl_->entities.of(record).index, RecordState::rowID(record));
    if (held.get() == &record) {
        impl_->changes.changed(std::move(held));
    }
}

bool ObjectContext::save(Error* error) {
    impl_->checkThread();
    return impl_->save(error);
}

bool ObjectContext::saveChangesOf(const std::vector<std::shared_ptr<ManagedObject>>& records,
                                  Error* error) {
    for (const auto& record : records) {
        if (record) {
            objectDidChange(*record);
        }
    }
    return save(error);
}

bool ObjectContext::hasChanges() const {
    impl_->checkThread();
    return !impl_->changes.empty();
}

void ObjectContext::rollback() {
    impl_->checkThread();
    impl_->rollback();
}

void ObjectContext::reset() {
    impl_->checkThread();
    impl_->reset();
}

std::size_t ObjectContext::registeredObjectCount() const {
    impl_->checkThread();
    impl_->identities.sweep();
    return impl_->identities.size() + impl_->changes.inserts().size() + impl_->provisional.size();
}

}  // namespace tb
