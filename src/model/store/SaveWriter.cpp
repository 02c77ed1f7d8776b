#include "model/store/SaveWriter.h"

#include "model/store/ChangeTracker.h"
#include "model/store/EntityDescription.h"
#include "model/store/FieldOps.h"
#include "model/store/PredicateCompiler.h"
#include "model/store/RecordState.h"
#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "model/store/StoreConnection.h"

namespace tb {

namespace {

std::string quote(const std::string& name) {
    return PredicateCompiler::quoteIdentifier(name);
}

// Binds every attribute of the record, in order from parameter 1.
void bindAll(const ManagedObject& record, SqliteStatement& statement) {
    const auto& attributes = record.entity().attributes();
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        FieldOps::bind(attributes[i], attributes[i].field(record), statement,
                       static_cast<int>(i) + 1);
    }
}

bool writes(const ManagedObject& record, const ContextEntities::Entry* only) {
    return !only || &record.entity() == only->entity;
}

}  // namespace

SaveWriter::SaveWriter(StoreConnection& connection, ContextEntities& entities)
    : connection_(connection), entities_(entities), statements_(entities.size()) {}

SaveWriter::~SaveWriter() = default;

bool SaveWriter::write(const ChangeTracker& changes,
                       Written& written,
                       SqliteError* error,
                       const ContextEntities::Entry* only) {
    for (const auto& record : changes.inserts()) {
        if (!writes(*record, only)) {
            written.insertedRows.push_back(0);  // keeps one entry per insert
        } else if (!writeInsert(*record, written, error)) {
            return false;
        }
    }
    for (const auto& record : changes.updates()) {
        if (writes(*record, only) && !RecordState::has(*record, RecordState::kDeleted) &&
            !writeUpdate(*record, written, error)) {
            return false;
        }
    }
    for (const auto& record : changes.deletes()) {
        if (writes(*record, only) && !writeDelete(*record, error)) {
            return false;
        }
    }
    return true;
}

std::string SaveWriter::columnList(const ContextEntities::Entry& entry) const {
    std::string list;
    for (const AttributeDescription& attribute : entry.entity->attributes()) {
        list += (list.empty() ? "" : ", ") + quote(attribute.name());
    }
    return list;
}

bool SaveWriter::writeInsert(ManagedObject& record, Written& written, SqliteError* error) {
    const ContextEntities::Entry& entry = entities_.of(record);
    Statements& statements = statements_[entry.index];
    std::string values;
    for (std::size_t i = 1; i <= entry.entity->attributes().size(); ++i) {
        values += (i == 1 ? "?" : ", ?") + std::to_string(i);
    }
    SqliteStatement* insert = connection_.prepared(
        statements.insert,
        "INSERT INTO " + entry.table + " (" + columnList(entry) + ") VALUES (" + values + ")",
        error);
    if (!insert) {
        return false;
    }
    bindAll(record, *insert);
    if (!StoreConnection::run(*insert, error)) {
        return false;
    }
    written.insertedRows.push_back(connection_.database().lastInsertRowId());
    return true;
}

bool SaveWriter::writeUpdate(ManagedObject& record, Written& written, SqliteError* error) {
    if (RecordState::has(record, RecordState::kPartial)) {
        return writePartialUpdate(record, written, error);
    }
    const ContextEntities::Entry& entry = entities_.of(record);
    Statements& statements = statements_[entry.index];
    const auto& attributes = entry.entity->attributes();
    std::string sql = "UPDATE " + entry.table + " SET ";
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        sql += (i == 0 ? "" : ", ") + quote(attributes[i].name()) + " = ?" + std::to_string(i + 1);
    }
    sql += " WHERE rowid = ?" + std::to_string(attributes.size() + 1);
    SqliteStatement* update = connection_.prepared(statements.update, sql, error);
    if (!update) {
        return false;
    }
    bindAll(record, *update);
    update->bindInt64(static_cast<int>(attributes.size()) + 1, RecordState::rowID(record));
    return StoreConnection::run(*update, error);
}

// A partial record holds defaults in the fields it did not read: it writes only the fields
// whose value is no longer the one it read (or, for the others, the default).
bool SaveWriter::writePartialUpdate(ManagedObject& record, Written& written, SqliteError* error) {
    const ContextEntities::Entry& entry = entities_.of(record);
    const auto& attributes = entry.entity->attributes();
    std::vector<std::uint64_t> stored = entry.defaultHashes;
    for (auto [index, hash] : RecordState::partial(record)) {
        stored[static_cast<std::size_t>(index)] = hash;
    }
    Written::Fields fields{&record, {}};
    std::string key;
    std::string sql = "UPDATE " + entry.table + " SET ";
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const std::uint64_t hash = FieldOps::hash(attributes[i], attributes[i].field(record));
        if (hash != stored[i]) {
            sql += (fields.hashes.empty() ? "" : ", ") + quote(attributes[i].name()) + " = ?" +
                   std::to_string(fields.hashes.size() + 1);
            key += std::to_string(i) + ",";
            fields.hashes.emplace_back(static_cast<std::int32_t>(i), hash);
        }
    }
    if (fields.hashes.empty()) {
        return true;
    }
    const int rowParameter = static_cast<int>(fields.hashes.size()) + 1;
    sql += " WHERE rowid = ?" + std::to_string(rowParameter);
    SqliteStatement* update =
        connection_.prepared(statements_[entry.index].partialUpdates[key], sql, error);
    if (!update) {
        return false;
    }
    for (std::size_t c = 0; c < fields.hashes.size(); ++c) {
        const AttributeDescription& attribute =
            attributes[static_cast<std::size_t>(fields.hashes[c].first)];
        FieldOps::bind(attribute, attribute.field(record), *update, static_cast<int>(c) + 1);
    }
    update->bindInt64(rowParameter, RecordState::rowID(record));
    written.partialFields.push_back(std::move(fields));
    return StoreConnection::run(*update, error);
}

bool SaveWriter::writeDelete(ManagedObject& record, SqliteError* error) {
    const ContextEntities::Entry& entry = entities_.of(record);
    SqliteStatement* remove = connection_.prepared(
        statements_[entry.index].remove, "DELETE FROM " + entry.table + " WHERE rowid = ?1", error);
    if (!remove) {
        return false;
    }
    remove->bindInt64(1, RecordState::rowID(record));
    return StoreConnection::run(*remove, error);
}

bool SaveWriter::reload(ManagedObject& record) {
    const ContextEntities::Entry& entry = entities_.of(record);
    SqliteStatement* select = connection_.prepared(
        statements_[entry.index].reload,
        "SELECT " + columnList(entry) + " FROM " + entry.table + " WHERE rowid = ?1", nullptr);
    if (!select) {
        return false;
    }
    select->bindInt64(1, RecordState::rowID(record));
    const bool found = select->step() == SqliteStatement::Step::row;
    if (found) {
        const auto& attributes = entry.entity->attributes();
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            FieldOps::read(attributes[i], attributes[i].field(record), *select,
                           static_cast<int>(i));
        }
        RecordState::partial(record).clear();
        RecordState::clear(record, RecordState::kPartial);
    }
    select->reset();
    select->clearBindings();
    return found;
}

void SaveWriter::dropStatements() {
    for (Statements& statements : statements_) {
        statements = Statements{};
    }
}

}  // namespace tb
