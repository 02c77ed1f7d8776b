#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "model/store/ContextEntities.h"

namespace tb {

class ChangeTracker;
class ManagedObject;
class SqliteStatement;
class StoreConnection;
struct SqliteError;

// Writes pending changes as rows, inside the transaction the caller has opened: every insert,
// every record named as changed, every delete, and nothing else. A full record is written
// whole; a partial one (fetched with some properties) only in the fields that were set.
class SaveWriter {
  public:
    SaveWriter(StoreConnection& connection, ContextEntities& entities);
    ~SaveWriter();

    // What was written, for the context to take in once the transaction is committed.
    struct Written {
        std::vector<std::int64_t> insertedRows;  // one per insert, in order; 0 if not written
        struct Fields {
            ManagedObject* record = nullptr;
            std::vector<std::pair<std::int32_t, std::uint64_t>> hashes;
        };
        std::vector<Fields> partialFields;  // the fields written of partial records
    };

    // Writes the changes of every entity, or of `only` (an entity index) alone.
    bool write(const ChangeTracker& changes,
               Written& written,
               SqliteError* error,
               const ContextEntities::Entry* only = nullptr);

    // Reads the record back from its row; false when the row is gone.
    bool reload(ManagedObject& record);

    void dropStatements();

  private:
    struct Statements {
        std::unique_ptr<SqliteStatement> insert;
        std::unique_ptr<SqliteStatement> update;
        std::unique_ptr<SqliteStatement> remove;
        std::unique_ptr<SqliteStatement> reload;
        std::unordered_map<std::string, std::unique_ptr<SqliteStatement>> partialUpdates;
    };

    bool writeInsert(ManagedObject& record, Written& written, SqliteError* error);
    bool writeUpdate(ManagedObject& record, Written& written, SqliteError* error);
    bool writePartialUpdate(ManagedObject& record, Written& written, SqliteError* error);
    bool writeDelete(ManagedObject& record, SqliteError* error);
    std::string columnList(const ContextEntities::Entry& entry) const;

    StoreConnection& connection_;
    ContextEntities& entities_;
    std::vector<Statements> statements_;
};

}  // namespace tb
