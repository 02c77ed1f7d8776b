#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Error.h"

namespace tb {

class PersistentStoreCoordinator;
class SqliteDatabase;
class SqliteStatement;
struct SqliteError;

// The context's way to the coordinator's open store: tells when the store was replaced (the
// rows and statements of the earlier one then mean nothing), prepares statements, runs the
// transaction, and turns SQLite's failures into store errors.
class StoreConnection {
  public:
    explicit StoreConnection(std::shared_ptr<PersistentStoreCoordinator> coordinator);
    ~StoreConnection();

    const std::shared_ptr<PersistentStoreCoordinator>& coordinator() const { return coordinator_; }

    // False (and the error) when the coordinator has no store. `replaced` tells whether the
    // store changed since the last call (not counting the first store).
    bool connect(bool& replaced, Error* error);
    SqliteDatabase& database() { return *database_; }

    // Prepares `sql` into `slot` on first use.
    SqliteStatement* prepared(std::unique_ptr<SqliteStatement>& slot,
                              const std::string& sql,
                              SqliteError* error);
    // Runs a statement that returns no rows, and readies it for its next use.
    static bool run(SqliteStatement& statement, SqliteError* error);

    bool begin(SqliteError* error);
    bool commit(SqliteError* error);
    // Undoes the open transaction, if one is open.
    void rollback();
    // Forgets every statement (the store was replaced).
    void dropStatements();

    Error storeError(const SqliteError& failure) const;

  private:
    std::shared_ptr<PersistentStoreCoordinator> coordinator_;
    SqliteDatabase* database_ = nullptr;
    std::uint64_t generation_ = 0;
    std::unique_ptr<SqliteStatement> begin_;
    std::unique_ptr<SqliteStatement> commit_;
    std::unique_ptr<SqliteStatement> rollback_;
};

}  // namespace tb
