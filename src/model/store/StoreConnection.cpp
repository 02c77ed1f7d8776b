#include "model/store/StoreConnection.h"

#include "model/store/PersistentStoreCoordinator.h"
#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "model/store/StoreError.h"

namespace tb {

StoreConnection::StoreConnection(std::shared_ptr<PersistentStoreCoordinator> coordinator)
    : coordinator_(std::move(coordinator)) {}

StoreConnection::~StoreConnection() = default;

bool StoreConnection::connect(bool& replaced, Error* error) {
    const std::uint64_t current = coordinator_->storeGeneration();
    replaced = current != generation_ && generation_ != 0;
    if (current != generation_) {
        dropStatements();
        generation_ = current;
    }
    database_ = coordinator_->database();
    if (!database_ && error) {
        *error = StoreError::noStore();
    }
    return database_ != nullptr;
}

SqliteStatement* StoreConnection::prepared(std::unique_ptr<SqliteStatement>& slot,
                                           const std::string& sql,
                                           SqliteError* error) {
    if (!slot) {
        slot = database_->prepare(sql, error);
    }
    return slot.get();
}

bool StoreConnection::run(SqliteStatement& statement, SqliteError* error) {
    const bool done = statement.step(error) == SqliteStatement::Step::done;
    statement.reset();
    statement.clearBindings();
    return done;
}

bool StoreConnection::begin(SqliteError* error) {
    SqliteStatement* statement = prepared(begin_, "BEGIN IMMEDIATE", error);
    return statement && run(*statement, error);
}

bool StoreConnection::commit(SqliteError* error) {
    SqliteStatement* statement = prepared(commit_, "COMMIT", error);
    return statement && run(*statement, error);
}

void StoreConnection::rollback() {
    if (database_ && database_->inTransaction()) {
        SqliteStatement* statement = prepared(rollback_, "ROLLBACK", nullptr);
        if (statement) {
            run(*statement, nullptr);
        }
    }
}

void StoreConnection::dropStatements() {
    begin_.reset();
    commit_.reset();
    rollback_.reset();
}

Error StoreConnection::storeError(const SqliteError& failure) const {
    return StoreError::fromSqlite(failure, false, coordinator_->storePath());
}

}  // namespace tb
