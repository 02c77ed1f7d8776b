#include "model/store/ObjectContext.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "model/store/EntityDescription.h"
#include "model/store/FieldOps.h"
#include "model/store/ManagedObjectModel.h"
#include "model/store/PersistentStoreCoordinator.h"
#include "model/store/PredicateCompiler.h"
#include "model/store/PredicateNode.h"
#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "model/store/StoreError.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

constexpr std::size_t kMaxPlans = 256;

std::string quote(const std::string& name) {
    return PredicateCompiler::quoteIdentifier(name);
}

// Runs a statement that returns no rows, and readies it for its next use.
bool run(SqliteStatement& statement, SqliteError* error) {
    bool done = statement.step(error) == SqliteStatement::Step::done;
    statement.reset();
    statement.clearBindings();
    return done;
}

}  // namespace

struct ObjectContext::Impl {
    // What the context keeps per entity: the identity map (row to the one live record), the
    // hashes of the default values, and the statements that write rows.
    struct EntityState {
        const EntityDescription* entity = nullptr;
        std::string table;
        std::unordered_map<std::int64_t, std::weak_ptr<ManagedObject>> registered;
        std::vector<std::uint64_t> defaultHashes;
        std::unique_ptr<ManagedObject> scratch;  // reads a value without touching a record
        std::unique_ptr<SqliteStatement> insert;
        std::unique_ptr<SqliteStatement> update;
        std::unique_ptr<SqliteStatement> remove;
        std::unique_ptr<SqliteStatement> reload;
        std::unordered_map<std::string, std::unique_ptr<SqliteStatement>> partialUpdates;
    };

    // A fetch or count request compiled to one prepared statement; made once per form of
    // request and reused with new arguments.
    struct Plan {
        EntityState* state = nullptr;
        std::unique_ptr<SqliteStatement> statement;
        CompiledPredicate predicate;
        std::vector<int> columns;  // attribute indexes read after the rowid, in entity order
        bool full = false;
        int excludeParameter = 0;
        int limitParameter = 0;
    };

    struct Update {
        std::shared_ptr<ManagedObject> record;
        EntityState* state = nullptr;
        bool full = true;
        std::vector<int> columns;  // of a partial record
        std::uint64_t hash = 0;
        std::vector<std::uint64_t> hashes;  // of `columns`, as written
    };

    Impl(ObjectContext& owner, std::shared_ptr<PersistentStoreCoordinator> coordinator)
        : owner(owner), coordinator(std::move(coordinator)) {
        for (const EntityDescription* entity : this->coordinator->managedObjectModel().entities()) {
            auto state = std::make_unique<EntityState>();
            state->entity = entity;
            state->table = quote(entity->name());
            for (const AttributeDescription& attribute : entity->attributes()) {
                state->defaultHashes.push_back(
                    FieldOps::hash(attribute, attribute.field(entity->prototype())));
            }
            state->scratch = entity->makeRecord();
            entities.push_back(std::move(state));
        }
    }

    // Connection ----------------------------------------------------------------------

    bool connect(Error* error) {
        std::uint64_t current = coordinator->storeGeneration();
        if (current != generation) {
            dropStatements();
            if (generation != 0) {
                forgetRows();  // rows of an earlier store mean nothing in this one
            }
            generation = current;
        }
        database = coordinator->database();
        if (!database) {
            if (error) {
                *error = StoreError::noStore();
            }
            return false;
        }
        return true;
    }

    void dropStatements() {
        plans.clear();
        begin.reset();
        commit.reset();
        rollbackStatement.reset();
        for (auto& state : entities) {
            state->insert.reset();
            state->update.reset();
            state->remove.reset();
            state->reload.reset();
            state->partialUpdates.clear();
        }
    }

    SqliteStatement* statement(std::unique_ptr<SqliteStatement>& slot,
                               const std::string& sql,
                               SqliteError* error) {
        if (!slot) {
            slot = database->prepare(sql, error);
        }
        return slot.get();
    }

    Error storeError(const SqliteError& failure) const {
        return StoreError::fromSqlite(failure, false, coordinator->storePath());
    }

    // Entities ------------------------------------------------------------------------

    EntityState* stateNamed(std::string_view name) {
        for (auto& state : entities) {
            if (state->entity->name() == name) {
                return state.get();
            }
        }
        return nullptr;
    }

    EntityState& stateFor(const EntityDescription& entity) {
        for (auto& state : entities) {
            if (state->entity == &entity) {
                return *state;
            }
        }
        TB_FATAL("The entity " + entity.name() + " is not in the store's model");
    }

    // Change tracking -----------------------------------------------------------------

    // The hash of each attribute as stored: read or written values for a partial record's
    // known attributes, defaults for the rest.
    std::vector<std::uint64_t> storedHashes(ManagedObject& record, const EntityState& state) {
        std::vector<std::uint64_t> hashes = state.defaultHashes;
        for (auto [index, hash] : partialOf(record)) {
            hashes[static_cast<std::size_t>(index)] = hash;
        }
        return hashes;
    }

    std::vector<int> changedColumns(ManagedObject& record, const EntityState& state) {
        std::vector<std::uint64_t> stored = storedHashes(record, state);
        std::vector<int> changed;
        const auto& attributes = state.entity->attributes();
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            if (FieldOps::hash(attributes[i], attributes[i].field(record)) != stored[i]) {
                changed.push_back(static_cast<int>(i));
            }
        }
        return changed;
    }

    bool isDirty(ManagedObject& record, const EntityState& state) {
        if (flagsOf(record) & kInserted) {
            return true;
        }
        if (flagsOf(record) & kPartial) {
            return !changedColumns(record, state).empty();
        }
        return FieldOps::hashRecord(record) != snapshotOf(record);
    }

    // The last reference to a record of this context went away.
    void released(ManagedObject* record) {
        EntityState& state = stateFor(record->entity());
        std::int64_t rowID = rowIDOf(*record);
        bool pending = flagsOf(*record) & (kInserted | kDeleted);
        if (rowID != 0 && !pending && isDirty(*record, state)) {
            // Unsaved changes: keep the record (the same object) until they are saved.
            std::shared_ptr<ManagedObject> kept(record, &ObjectContext::release);
            state.registered[rowID] = kept;
            held.push_back(std::move(kept));
            return;
        }
        if (rowID != 0) {
            auto it = state.registered.find(rowID);
            if (it != state.registered.end() && it->second.expired()) {
                state.registered.erase(it);
            }
        }
        delete record;
    }

    void detach(ManagedObject& record) {
        contextOf(record) = nullptr;
        rowIDOf(record) = 0;
        flagsOf(record) &= static_cast<std::uint8_t>(~(kInserted | kPartial));
        partialOf(record).clear();
    }

    // Detaches every record that stands for a row, and drops pending deletes.
    void forgetRows() {
        std::vector<std::shared_ptr<ManagedObject>> alive;
        for (auto& state : entities) {
            for (auto& [rowID, weak] : state->registered) {
                if (auto record = weak.lock()) {
                    detach(*record);
                    alive.push_back(std::move(record));
                }
            }
            state->registered.clear();
        }
        for (auto& record : deleted) {
            detach(*record);
        }
        auto releasedDeleted = std::move(deleted);
        auto releasedHeld = std::move(held);
        deleted.clear();
        held.clear();
    }

    // Fetching ------------------------------------------------------------------------

    std::string planKey(const FetchRequest& request, bool count, bool exclude) const {
        std::string key = request.entityName;
        key += '\x1e';
        if (request.predicate) {
            key += request.predicate->key();
        }
        key += '\x1e';
        for (const SortDescriptor& sort : request.sortDescriptors) {
            key += sort.key;
            key += sort.ascending ? '+' : '-';
            key += sort.caseInsensitive ? 'i' : ' ';
        }
        key += '\x1e';
        for (const std::string& property : request.propertiesToFetch) {
            key += property;
            key += ',';
        }
        key += '\x1e';
        key += count ? 'C' : 'F';
        key += exclude ? 'X' : ' ';
        key += request.fetchLimit > 0 && !count ? 'L' : ' ';
        return key;
    }

    int attributeIndex(const EntityState& state, const std::string& name, const char* role) {
        int index = state.entity->indexOfAttribute(name);
        if (index < 0) {
            TB_FATAL(std::string("The fetch request's ") + role + " '" + name +
                     "' is not an attribute of the entity " + state.entity->name());
        }
        return index;
    }

    Plan* planFor(const FetchRequest& request,
                  EntityState& state,
                  bool count,
                  bool exclude,
                  Error* error) {
        std::string key = planKey(request, count, exclude);
        auto found = plans.find(key);
        if (found != plans.end()) {
            return found->second.get();
        }
        auto plan = std::make_unique<Plan>();
        plan->state = &state;
        const auto& attributes = state.entity->attributes();
        if (!count) {
            if (request.propertiesToFetch.empty()) {
                for (std::size_t i = 0; i < attributes.size(); ++i) {
                    plan->columns.push_back(static_cast<int>(i));
                }
            } else {
                for (const std::string& name : request.propertiesToFetch) {
                    plan->columns.push_back(attributeIndex(state, name, "property to fetch"));
                }
                std::sort(plan->columns.begin(), plan->columns.end());
                plan->columns.erase(std::unique(plan->columns.begin(), plan->columns.end()),
                                    plan->columns.end());
            }
            plan->full = plan->columns.size() == attributes.size();
        }

        std::string sql = "SELECT ";
        if (count) {
            sql += "COUNT(*)";
        } else {
            sql += "rowid";
            for (int column : plan->columns) {
                sql += ", " + quote(attributes[static_cast<std::size_t>(column)].name());
            }
        }
        sql += " FROM " + state.table;
        std::vector<std::string> conditions;
        int nextParameter = 1;
        if (request.predicate) {
            plan->predicate =
                PredicateCompiler::compile(request.predicate->root(), *state.entity, 1);
            conditions.push_back(plan->predicate.sql);
            nextParameter += request.predicate->root().placeholderCount;
        }
        if (exclude) {
            plan->excludeParameter = nextParameter++;
            conditions.push_back("rowid NOT IN (SELECT value FROM json_each(?" +
                                 std::to_string(plan->excludeParameter) + "))");
        }
        for (std::size_t i = 0; i < conditions.size(); ++i) {
            sql += (i == 0 ? " WHERE " : " AND ") + conditions[i];
        }
        if (!count) {
            sql += " ORDER BY ";
            for (const SortDescriptor& sort : request.sortDescriptors) {
                attributeIndex(state, sort.key, "sort key");
                std::string column = quote(sort.key);
                sql += sort.caseInsensitive ? "tb_fold(" + column + ", 1)" : column;
                sql += sort.ascending ? " ASC, " : " DESC, ";
            }
            sql += "rowid ASC";  // rows of equal keys keep the order they were saved in
            if (request.fetchLimit > 0) {
                plan->limitParameter = nextParameter++;
                sql += " LIMIT ?" + std::to_string(plan->limitParameter);
            }
        }

        SqliteError failure;
        plan->statement = database->prepare(sql, &failure);
        if (!plan->statement) {
            if (error) {
                *error = storeError(failure);
            }
            return nullptr;
        }
        if (plans.size() >= kMaxPlans) {
            plans.clear();
        }
        return plans.emplace(std::move(key), std::move(plan)).first->second.get();
    }

    std::string deletedRowIDs(const EntityState& state) {
        std::string json = "[";
        for (const auto& record : deleted) {
            if (&record->entity() == state.entity) {
                json += (json.size() > 1 ? "," : "") + std::to_string(rowIDOf(*record));
            }
        }
        return json + "]";
    }

    bool hasPendingDeletes(const EntityState& state) const {
        return std::any_of(deleted.begin(), deleted.end(),
                           [&](const auto& record) { return &record->entity() == state.entity; });
    }

    void bindPlan(Plan& plan, const FetchRequest& request) {
        SqliteStatement& statement = *plan.statement;
        if (request.predicate) {
            PredicateCompiler::bind(plan.predicate, request.predicate->arguments(), statement);
        }
        if (plan.excludeParameter) {
            statement.bindText(plan.excludeParameter, deletedRowIDs(*plan.state));
        }
        if (plan.limitParameter) {
            statement.bindInt64(plan.limitParameter, static_cast<std::int64_t>(request.fetchLimit));
        }
    }

    // A new record read from the current row of the plan's statement.
    std::shared_ptr<ManagedObject> makeRecord(const Plan& plan, std::int64_t rowID) {
        const EntityState& state = *plan.state;
        const SqliteStatement& statement = *plan.statement;
        const auto& attributes = state.entity->attributes();
        std::unique_ptr<ManagedObject> made = state.entity->makeRecord();
        ManagedObject& record = *made;
        if (plan.full) {
            std::uint64_t snapshot = FieldOps::kRecordSeed;
            for (std::size_t i = 0; i < attributes.size(); ++i) {
                void* field = attributes[i].field(record);
                FieldOps::read(attributes[i], field, statement, static_cast<int>(i) + 1);
                snapshot = FieldOps::combine(snapshot, FieldOps::hash(attributes[i], field));
            }
            snapshotOf(record) = snapshot;
        } else {
            auto& partial = partialOf(record);
            partial.reserve(plan.columns.size());
            for (std::size_t c = 0; c < plan.columns.size(); ++c) {
                const AttributeDescription& attribute =
                    attributes[static_cast<std::size_t>(plan.columns[c])];
                void* field = attribute.field(record);
                FieldOps::read(attribute, field, statement, static_cast<int>(c) + 1);
                partial.emplace_back(plan.columns[c], FieldOps::hash(attribute, field));
            }
            flagsOf(record) |= kPartial;
        }
        contextOf(record) = &owner;
        rowIDOf(record) = rowID;
        return std::shared_ptr<ManagedObject>(made.release(), &ObjectContext::release);
    }

    // A partial record met again by a fetch that reads more: it takes the newly read values,
    // except where it was changed, and becomes a full record once it knows every attribute.
    void complete(ManagedObject& record, const Plan& plan) {
        EntityState& state = *plan.state;
        const SqliteStatement& statement = *plan.statement;
        const auto& attributes = state.entity->attributes();
        auto& partial = partialOf(record);
        for (std::size_t c = 0; c < plan.columns.size(); ++c) {
            int index = plan.columns[c];
            bool known = std::any_of(partial.begin(), partial.end(),
                                     [&](const auto& entry) { return entry.first == index; });
            if (known) {
                continue;
            }
            const AttributeDescription& attribute = attributes[static_cast<std::size_t>(index)];
            void* field = attribute.field(record);
            bool unchanged = FieldOps::hash(attribute, field) ==
                             state.defaultHashes[static_cast<std::size_t>(index)];
            void* target = unchanged ? field : attribute.field(*state.scratch);
            FieldOps::read(attribute, target, statement, static_cast<int>(c) + 1);
            partial.emplace_back(index, FieldOps::hash(attribute, target));
        }
        if (partial.size() == attributes.size()) {
            std::sort(partial.begin(), partial.end());
            std::uint64_t snapshot = FieldOps::kRecordSeed;
            for (auto [index, hash] : partial) {
                snapshot = FieldOps::combine(snapshot, hash);
            }
            snapshotOf(record) = snapshot;
            partial.clear();
            flagsOf(record) &= static_cast<std::uint8_t>(~kPartial);
        }
    }

    std::shared_ptr<ManagedObject> recordForRow(const Plan& plan, std::int64_t rowID) {
        EntityState& state = *plan.state;
        auto it = state.registered.find(rowID);
        if (it != state.registered.end()) {
            if (auto existing = it->second.lock()) {
                if (flagsOf(*existing) & kPartial) {
                    complete(*existing, plan);
                }
                return existing;
            }
        }
        auto record = makeRecord(plan, rowID);
        if (it != state.registered.end()) {
            it->second = record;
        } else {
            state.registered.emplace(rowID, record);
        }
        return record;
    }

    bool fetch(const FetchRequest& request,
               const EntityDescription* expected,
               ResultSink& sink,
               Error* error) {
        EntityState& state = requestState(request, expected);
        if (!connect(error)) {
            return false;
        }
        Plan* plan = planFor(request, state, false, hasPendingDeletes(state), error);
        if (!plan) {
            return false;
        }
        bindPlan(*plan, request);
        SqliteStatement& statement = *plan->statement;
        SqliteError failure;
        bool ok = true;
        while (true) {
            auto step = statement.step(&failure);
            if (step == SqliteStatement::Step::done) {
                break;
            }
            if (step == SqliteStatement::Step::error) {
                ok = false;
                break;
            }
            sink.add(recordForRow(*plan, statement.columnInt64(0)));
        }
        statement.reset();
        statement.clearBindings();
        if (!ok && error) {
            *error = storeError(failure);
        }
        return ok;
    }

    std::optional<std::int64_t> count(const FetchRequest& request, Error* error) {
        EntityState& state = requestState(request, nullptr);
        if (!connect(error)) {
            return std::nullopt;
        }
        Plan* plan = planFor(request, state, true, hasPendingDeletes(state), error);
        if (!plan) {
            return std::nullopt;
        }
        bindPlan(*plan, request);
        SqliteStatement& statement = *plan->statement;
        SqliteError failure;
        std::optional<std::int64_t> result;
        if (statement.step(&failure) == SqliteStatement::Step::row) {
            result = statement.columnInt64(0);
        } else if (error) {
            *error = storeError(failure);
        }
        statement.reset();
        statement.clearBindings();
        if (result && request.fetchLimit > 0) {
            result = std::min<std::int64_t>(*result, static_cast<std::int64_t>(request.fetchLimit));
        }
        return result;
    }

    EntityState& requestState(const FetchRequest& request, const EntityDescription* expected) {
        EntityState* state = stateNamed(request.entityName);
        if (!state) {
            TB_FATAL("The fetch request names the entity '" + request.entityName +
                     "', which is not in the store's model");
        }
        if (expected && state->entity != expected) {
            TB_FATAL("The fetch request for '" + request.entityName +
                     "' was asked for records of " + expected->name());
        }
        return *state;
    }

    // Saving --------------------------------------------------------------------------

    // Binds every attribute of the record, in order from parameter 1; returns the record's
    // hash as written.
    static std::uint64_t bindAll(const ManagedObject& record, SqliteStatement& statement) {
        std::uint64_t hash = FieldOps::kRecordSeed;
        const auto& attributes = record.entity().attributes();
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            const void* field = attributes[i].field(record);
            FieldOps::bind(attributes[i], field, statement, static_cast<int>(i) + 1);
            hash = FieldOps::combine(hash, FieldOps::hash(attributes[i], field));
        }
        return hash;
    }

    std::string columnList(const EntityState& state) {
        std::string list;
        for (const AttributeDescription& attribute : state.entity->attributes()) {
            list += (list.empty() ? "" : ", ") + quote(attribute.name());
        }
        return list;
    }

    std::string insertSQL(const EntityState& state) {
        if (state.insert) {
            return {};  // prepared already: the text is not needed
        }
        std::string sql = "INSERT INTO " + state.table + " (" + columnList(state) + ") VALUES (";
        for (std::size_t i = 0; i < state.entity->attributes().size(); ++i) {
            sql += (i == 0 ? "?" : ", ?") + std::to_string(i + 1);
        }
        return sql + ")";
    }

    std::string updateSQL(const EntityState& state) {
        const auto& attributes = state.entity->attributes();
        std::string sql = "UPDATE " + state.table + " SET ";
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            sql +=
                (i == 0 ? "" : ", ") + quote(attributes[i].name()) + " = ?" + std::to_string(i + 1);
        }
        return sql + " WHERE rowid = ?" + std::to_string(attributes.size() + 1);
    }

    bool writeInserts(std::vector<std::pair<std::int64_t, std::uint64_t>>& rows,
                      SqliteError* error) {
        for (const auto& record : inserted) {
            EntityState& state = stateFor(record->entity());
            SqliteStatement* insert = statement(state.insert, insertSQL(state), error);
            if (!insert) {
                return false;
            }
            std::uint64_t hash = bindAll(*record, *insert);
            if (!run(*insert, error)) {
                return false;
            }
            rows.emplace_back(database->lastInsertRowId(), hash);
        }
        return true;
    }

    bool writeUpdates(std::vector<Update>& updates, SqliteError* error) {
        for (Update& update : updates) {
            EntityState& state = *update.state;
            const auto& attributes = state.entity->attributes();
            SqliteStatement* write = nullptr;
            int rowParameter = 0;
            if (update.full) {
                rowParameter = static_cast<int>(attributes.size()) + 1;
                write = state.update ? state.update.get()
                                     : statement(state.update, updateSQL(state), error);
                if (!write) {
                    return false;
                }
                update.hash = bindAll(*update.record, *write);
            } else {
                std::string key;
                std::string sql = "UPDATE " + state.table + " SET ";
                for (std::size_t c = 0; c < update.columns.size(); ++c) {
                    key += std::to_string(update.columns[c]) + ",";
                    sql += (c == 0 ? "" : ", ") +
                           quote(attributes[static_cast<std::size_t>(update.columns[c])].name()) +
                           " = ?" + std::to_string(c + 1);
                }
                rowParameter = static_cast<int>(update.columns.size()) + 1;
                write = statement(state.partialUpdates[key],
                                  sql + " WHERE rowid = ?" + std::to_string(rowParameter), error);
                if (!write) {
                    return false;
                }
                for (std::size_t c = 0; c < update.columns.size(); ++c) {
                    const AttributeDescription& attribute =
                        attributes[static_cast<std::size_t>(update.columns[c])];
                    const void* field = attribute.field(*update.record);
                    FieldOps::bind(attribute, field, *write, static_cast<int>(c) + 1);
                    update.hashes.push_back(FieldOps::hash(attribute, field));
                }
            }
            write->bindInt64(rowParameter, rowIDOf(*update.record));
            if (!run(*write, error)) {
                return false;
            }
        }
        return true;
    }

    bool writeDeletes(SqliteError* error) {
        for (const auto& record : deleted) {
            EntityState& state = stateFor(record->entity());
            SqliteStatement* remove =
                state.remove ? state.remove.get()
                             : statement(state.remove,
                                         "DELETE FROM " + state.table + " WHERE rowid = ?1", error);
            if (!remove) {
                return false;
            }
            remove->bindInt64(1, rowIDOf(*record));
            if (!run(*remove, error)) {
                return false;
            }
        }
        return true;
    }

    bool transaction(std::unique_ptr<SqliteStatement>& slot, const char* sql, SqliteError* error) {
        SqliteStatement* statement = this->statement(slot, sql, error);
        return statement && run(*statement, error);
    }

    // The write that a stored record needs: none when its values are still those of its row.
    std::optional<Update> updateFor(std::shared_ptr<ManagedObject> record, EntityState& state) {
        if (flagsOf(*record) & (kDeleted | kInserted)) {
            return std::nullopt;
        }
        Update update;
        update.state = &state;
        if (flagsOf(*record) & kPartial) {
            update.full = false;
            update.columns = changedColumns(*record, state);
            if (update.columns.empty()) {
                return std::nullopt;
            }
        } else if (FieldOps::hashRecord(*record) == snapshotOf(*record)) {
            return std::nullopt;
        }
        update.record = std::move(record);
        return update;
    }

    std::vector<Update> collectUpdates() {
        std::vector<Update> updates;
        for (auto& state : entities) {
            for (auto& [rowID, weak] : state->registered) {
                if (auto record = weak.lock()) {
                    if (auto update = updateFor(std::move(record), *state)) {
                        updates.push_back(std::move(*update));
                    }
                }
            }
        }
        return updates;
    }

    // The updates of the named records and of those kept for their changes, each once.
    std::vector<Update> collectUpdatesOf(const std::vector<std::shared_ptr<ManagedObject>>& named) {
        std::vector<Update> updates;
        std::unordered_set<const ManagedObject*> seen;
        auto consider = [&](const std::shared_ptr<ManagedObject>& record) {
            if (!record || contextOf(*record) != &owner || rowIDOf(*record) == 0 ||
                !seen.insert(record.get()).second) {
                return;
            }
            if (auto update = updateFor(record, stateFor(record->entity()))) {
                updates.push_back(std::move(*update));
            }
        };
        for (const auto& record : held) {
            consider(record);
        }
        for (const auto& record : named) {
            consider(record);
        }
        return updates;
    }

    // Saves every change, or (with `named`) the changes of the named records only.
    bool save(Error* error, const std::vector<std::shared_ptr<ManagedObject>>* named = nullptr) {
        if (!connect(error)) {
            return false;
        }
        std::vector<Update> updates = named ? collectUpdatesOf(*named) : collectUpdates();
        if (inserted.empty() && deleted.empty() && updates.empty()) {
            auto releasedHeld = std::move(held);
            held.clear();
            return true;
        }
        SqliteError failure;
        std::vector<std::pair<std::int64_t, std::uint64_t>> rows;
        bool ok = transaction(begin, "BEGIN IMMEDIATE", &failure) && writeInserts(rows, &failure) &&
                  writeUpdates(updates, &failure) && writeDeletes(&failure) &&
                  transaction(commit, "COMMIT", &failure);
        if (!ok) {
            if (database->inTransaction()) {
                transaction(rollbackStatement, "ROLLBACK", nullptr);
            }
            if (error) {
                *error = storeError(failure);
            }
            return false;
        }
        afterCommit(rows, updates);
        return true;
    }

    void afterCommit(const std::vector<std::pair<std::int64_t, std::uint64_t>>& rows,
                     std::vector<Update>& updates) {
        for (std::size_t i = 0; i < inserted.size(); ++i) {
            ManagedObject& record = *inserted[i];
            rowIDOf(record) = rows[i].first;
            snapshotOf(record) = rows[i].second;
            flagsOf(record) &= static_cast<std::uint8_t>(~kInserted);
            stateFor(record.entity()).registered[rows[i].first] = inserted[i];
        }
        for (Update& update : updates) {
            ManagedObject& record = *update.record;
            if (update.full) {
                snapshotOf(record) = update.hash;
                continue;
            }
            auto& partial = partialOf(record);
            for (std::size_t c = 0; c < update.columns.size(); ++c) {
                auto known = std::find_if(partial.begin(), partial.end(), [&](const auto& entry) {
                    return entry.first == update.columns[c];
                });
                if (known != partial.end()) {
                    known->second = update.hashes[c];
                } else {
                    partial.emplace_back(update.columns[c], update.hashes[c]);
                }
            }
        }
        for (const auto& record : deleted) {
            stateFor(record->entity()).registered.erase(rowIDOf(*record));
            detach(*record);
        }
        // Dropped last: releasing a record may call back into this context.
        auto releasedInserted = std::move(inserted);
        auto releasedDeleted = std::move(deleted);
        auto releasedHeld = std::move(held);
        inserted.clear();
        deleted.clear();
        held.clear();
    }

    // Rollback and reset --------------------------------------------------------------

    void dropPendingInsertsAndDeletes() {
        for (const auto& record : inserted) {
            detach(*record);
        }
        for (const auto& record : deleted) {
            flagsOf(*record) &= static_cast<std::uint8_t>(~kDeleted);
        }
        auto releasedInserted = std::move(inserted);
        auto releasedDeleted = std::move(deleted);
        inserted.clear();
        deleted.clear();
    }

    // Reads a changed record back from its row; false when the row is gone.
    bool reload(ManagedObject& record, EntityState& state) {
        SqliteStatement* select = state.reload
                                      ? state.reload.get()
                                      : statement(state.reload,
                                                  "SELECT rowid, " + columnList(state) + " FROM " +
                                                      state.table + " WHERE rowid = ?1",
                                                  nullptr);
        if (!select) {
            return false;
        }
        select->bindInt64(1, rowIDOf(record));
        bool found = select->step() == SqliteStatement::Step::row;
        if (found) {
            const auto& attributes = state.entity->attributes();
            std::uint64_t snapshot = FieldOps::kRecordSeed;
            for (std::size_t i = 0; i < attributes.size(); ++i) {
                void* field = attributes[i].field(record);
                FieldOps::read(attributes[i], field, *select, static_cast<int>(i) + 1);
                snapshot = FieldOps::combine(snapshot, FieldOps::hash(attributes[i], field));
            }
            snapshotOf(record) = snapshot;
            partialOf(record).clear();
            flagsOf(record) &= static_cast<std::uint8_t>(~kPartial);
        }
        select->reset();
        select->clearBindings();
        return found;
    }

    void rollback() {
        dropPendingInsertsAndDeletes();
        bool connected = connect(nullptr);
        std::vector<std::shared_ptr<ManagedObject>> alive;
        for (auto& state : entities) {
            for (auto it = state->registered.begin(); it != state->registered.end();) {
                auto record = it->second.lock();
                if (record && isDirty(*record, *state) && !(connected && reload(*record, *state))) {
                    detach(*record);
                    alive.push_back(std::move(record));
                    it = state->registered.erase(it);
                    continue;
                }
                if (record) {
                    alive.push_back(std::move(record));
                }
                ++it;
            }
        }
        auto releasedHeld = std::move(held);
        held.clear();
    }

    void reset() {
        dropPendingInsertsAndDeletes();
        forgetRows();
    }

    bool hasChanges() {
        if (!inserted.empty() || !deleted.empty() || !held.empty()) {
            return true;
        }
        for (auto& state : entities) {
            for (auto& [rowID, weak] : state->registered) {
                auto record = weak.lock();
                if (record && isDirty(*record, *state)) {
                    return true;
                }
            }
        }
        return false;
    }

    ObjectContext& owner;
    std::shared_ptr<PersistentStoreCoordinator> coordinator;
    SqliteDatabase* database = nullptr;
    std::uint64_t generation = 0;
    std::vector<std::unique_ptr<EntityState>> entities;
    std::unordered_map<std::string, std::unique_ptr<Plan>> plans;
    std::unique_ptr<SqliteStatement> begin;
    std::unique_ptr<SqliteStatement> commit;
    std::unique_ptr<SqliteStatement> rollbackStatement;
    // Strong references: inserted records until saved, deleted ones until saved, and records
    // whose last outside reference went while they had unsaved changes.
    std::vector<std::shared_ptr<ManagedObject>> inserted;
    std::vector<std::shared_ptr<ManagedObject>> deleted;
    std::vector<std::shared_ptr<ManagedObject>> held;
};

ObjectContext::ObjectContext(std::shared_ptr<PersistentStoreCoordinator> coordinator)
    : impl_(std::make_unique<Impl>(*this, std::move(coordinator))) {}

ObjectContext::~ObjectContext() {
    impl_->reset();
}

const std::shared_ptr<PersistentStoreCoordinator>& ObjectContext::persistentStoreCoordinator()
    const {
    return impl_->coordinator;
}

std::optional<std::vector<std::shared_ptr<ManagedObject>>> ObjectContext::executeFetchRequest(
    const FetchRequest& request,
    Error* error) {
    std::vector<std::shared_ptr<ManagedObject>> records;
    class Sink final : public ResultSink {
      public:
        explicit Sink(std::vector<std::shared_ptr<ManagedObject>>& out) : out_(out) {}
        void add(std::shared_ptr<ManagedObject> record) override {
            out_.push_back(std::move(record));
        }

      private:
        std::vector<std::shared_ptr<ManagedObject>>& out_;
    } sink(records);
    if (!fetchInto(request, nullptr, sink, error)) {
        return std::nullopt;
    }
    return records;
}

bool ObjectContext::fetchInto(const FetchRequest& request,
                              const EntityDescription* expected,
                              ResultSink& sink,
                              Error* error) {
    return impl_->fetch(request, expected, sink, error);
}

std::optional<std::int64_t> ObjectContext::countForFetchRequest(const FetchRequest& request,
                                                                Error* error) {
    return impl_->count(request, error);
}

std::shared_ptr<ManagedObject> ObjectContext::insertNewObjectForEntityForName(
    std::string_view entityName) {
    Impl::EntityState* state = impl_->stateNamed(entityName);
    if (!state) {
        TB_FATAL("No entity named '" + std::string(entityName) + "' in the store's model");
    }
    return insert(*state->entity);
}

std::shared_ptr<ManagedObject> ObjectContext::insert(const EntityDescription& entity) {
    impl_->stateFor(entity);  // the entity must be the model's
    std::unique_ptr<ManagedObject> made = entity.makeRecord();
    made->context_ = this;
    made->flags_ |= kInserted;
    std::shared_ptr<ManagedObject> record(made.release(), &ObjectContext::release);
    impl_->inserted.push_back(record);
    return record;
}

void ObjectContext::deleteObject(const std::shared_ptr<ManagedObject>& record) {
    if (!record || record->context_ != this || record->isDeleted()) {
        return;
    }
    if (record->isInserted()) {
        impl_->detach(*record);
        record->flags_ |= kDeleted;
        auto& inserted = impl_->inserted;
        inserted.erase(std::remove(inserted.begin(), inserted.end(), record), inserted.end());
        return;
    }
    record->flags_ |= kDeleted;
    impl_->deleted.push_back(record);
}

bool ObjectContext::save(Error* error) {
    return impl_->save(error);
}

bool ObjectContext::saveChangesOf(const std::vector<std::shared_ptr<ManagedObject>>& records,
                                  Error* error) {
    return impl_->save(error, &records);
}

bool ObjectContext::hasChanges() const {
    return impl_->hasChanges();
}

void ObjectContext::rollback() {
    impl_->rollback();
}

void ObjectContext::reset() {
    impl_->reset();
}

std::size_t ObjectContext::registeredObjectCount() const {
    std::size_t count = impl_->inserted.size();
    for (const auto& state : impl_->entities) {
        count += state->registered.size();
    }
    return count;
}

void ObjectContext::release(ManagedObject* record) {
    ObjectContext* context = record->context_;
    if (!context) {
        delete record;
        return;
    }
    context->impl_->released(record);
}

}  // namespace tb
