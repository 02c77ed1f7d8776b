#include "model/store/PersistentStoreCoordinator.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <sqlite3.h>

#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "model/store/StoreError.h"
#include "model/store/StoreSchema.h"
#include "model/store/TextFolding.h"

namespace tb {

namespace {

constexpr int kBusyTimeoutMilliseconds = 2000;

// The one text a pragma answers with; nothing (and `error` set) when it can't be read.
std::optional<std::string> pragmaText(SqliteDatabase& database,
                                      const char* pragma,
                                      SqliteError* error) {
    auto statement = database.prepare(pragma, error);
    if (!statement || statement->step(error) != SqliteStatement::Step::row) {
        return std::nullopt;
    }
    return std::string(statement->columnText(0));
}

// Switches the file to write-ahead logging. This is the first read of the file: a file that
// is not a database fails here.
bool useWriteAheadLog(SqliteDatabase& database, SqliteError* error) {
    const auto mode = pragmaText(database, "PRAGMA journal_mode=WAL", error);
    if (!mode) {
        return false;
    }
    if (*mode != "wal") {
        *error = SqliteError{SQLITE_CANTOPEN, SQLITE_CANTOPEN, 0,
                             "write-ahead logging is not available for this file"};
        return false;
    }
    return true;
}

bool configure(SqliteDatabase& database, SqliteError* error) {
    sqlite3_busy_timeout(database.handle(), kBusyTimeoutMilliseconds);
    // Keep "-wal" beside the store after it is closed, as the backup exclusion expects.
    int persist = 1;
    sqlite3_file_control(database.handle(), "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
    if (!useWriteAheadLog(database, error)) {
        return false;
    }
    // With a size limit set, closing the store also empties "-wal": the file itself then
    // holds every row, and a copy of it (the debug export) is complete.
    if (!database.execute("PRAGMA synchronous=NORMAL; PRAGMA journal_size_limit=4194304", error)) {
        return false;
    }
    if (!TextFolding::registerSqlFunction(database)) {
        *error = database.lastError();
        return false;
    }
    return true;
}

// Nothing, or a plain file, in the place of each of the store's files; else the failure.
bool plainStoreFiles(const std::vector<std::string>& files, SqliteError* error) {
    for (const std::string& file : files) {
        std::error_code ignored;
        const auto type = std::filesystem::symlink_status(file, ignored).type();
        if (type != std::filesystem::file_type::not_found &&
            type != std::filesystem::file_type::regular) {
            *error =
                SqliteError{SQLITE_CANTOPEN, SQLITE_CANTOPEN, 0, file + " is not a plain file"};
            return false;
        }
    }
    return true;
}

// "<stem>-broken-<stamp><extension>" beside the store; a second rebuild within the same
// second gets a number after the stamp.
std::string unusedKeptName(const std::filesystem::path& store, const std::string& stamp) {
    for (int attempt = 1;; ++attempt) {
        const std::string suffix = attempt == 1 ? "" : "-" + std::to_string(attempt);
        const auto kept = store.parent_path() / (store.stem().string() + "-broken-" + stamp +
                                                 suffix + store.extension().string());
        std::error_code ignored;
        if (std::filesystem::symlink_status(kept, ignored).type() ==
            std::filesystem::file_type::not_found) {
            return kept.string();
        }
    }
}

}  // namespace

PersistentStoreCoordinator::PersistentStoreCoordinator(ManagedObjectModel model)
    : model_(std::move(model)) {}

PersistentStoreCoordinator::~PersistentStoreCoordinator() = default;

bool PersistentStoreCoordinator::addPersistentStore(const std::string& path, Error* error) {
    removePersistentStore();
    SqliteError failure;
    auto database = plainStoreFiles(storeFiles(path), &failure)
                        ? SqliteDatabase::open(path, &failure)
                        : nullptr;
    // No page is checked here: opening reads the header and the schema, which is where a torn,
    // truncated or foreign file fails. A broken page further in is met by the first statement
    // that reads it, and fails that statement alone.
    bool ready = database && configure(*database, &failure) &&
                 StoreSchema::apply(*database, model_, &failure);
    if (!ready) {
        if (error) {
            *error = StoreError::fromSqlite(failure, true, path);
        }
        return false;
    }
    database_ = std::move(database);
    path_ = path;
    ++generation_;
    indexesRepaired_ = false;
    return true;
}

bool PersistentStoreCoordinator::repairIndexes(Error* error) {
    if (!database_ || indexesRepaired_) {
        if (error) {
            *error = StoreError::noStore();
        }
        return false;
    }
    indexesRepaired_ = true;  // once per opening: a broken table would fail every time
    SqliteError failure;
    // REINDEX cures an index whose entries went wrong on pages that can still be read.
    if (database_->execute("REINDEX", &failure)) {
        return true;
    }
    // Pages that can't be read can't be freed either, so a broken index can't be dropped:
    // in one transaction, the indexes are taken out of the schema and made again from the
    // rows. A broken table fails the remake, and the transaction leaves all as it was.
    failure = SqliteError{};
    std::vector<std::string> indexes;
    auto list = database_->prepare(
        "SELECT sql FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL", &failure);
    while (list && list->step(&failure) == SqliteStatement::Step::row) {
        indexes.emplace_back(list->columnText(0));
    }
    list.reset();
    bool remade = database_->execute(
        "BEGIN IMMEDIATE; PRAGMA writable_schema=ON; "
        "DELETE FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL; "
        "PRAGMA writable_schema=RESET",
        &failure);
    for (std::size_t i = 0; remade && i < indexes.size(); ++i) {
        remade = database_->execute(indexes[i], &failure);
    }
    if (!remade || !database_->execute("COMMIT", &failure)) {
        database_->execute("ROLLBACK");
        database_->execute("PRAGMA writable_schema=RESET");
        if (error) {
            *error = StoreError::fromSqlite(failure, false, path_);
        }
        return false;
    }
    database_->execute("VACUUM");  // lets the old pages go; a failure only leaves them unused
    return true;
}

void PersistentStoreCoordinator::removePersistentStore() {
    if (database_) {
        database_.reset();
        ++generation_;
    }
}

bool PersistentStoreCoordinator::checkpoint(Error* error) {
    if (!database_) {
        if (error) {
            *error = StoreError::noStore();
        }
        return false;
    }
    SqliteError failure;
    if (!database_->execute("PRAGMA wal_checkpoint(TRUNCATE)", &failure)) {
        if (error) {
            *error = StoreError::fromSqlite(failure, false, path_);
        }
        return false;
    }
    return true;
}

std::vector<std::string> PersistentStoreCoordinator::storeFiles(const std::string& path) {
    return {path, path + "-wal", path + "-shm"};
}

void PersistentStoreCoordinator::destroyPersistentStore(const std::string& path) {
    for (const std::string& file : storeFiles(path)) {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    }
}

std::string PersistentStoreCoordinator::setPersistentStoreAside(const std::string& path,
                                                                const std::string& stamp) {
    namespace fs = std::filesystem;
    const fs::path store(path);
    std::error_code error;
    if (fs::symlink_status(store, error).type() != fs::file_type::regular) {
        destroyPersistentStore(path);
        return {};
    }
    const std::string kept = unusedKeptName(store, stamp);
    fs::rename(path, kept, error);
    if (error) {
        destroyPersistentStore(path);
        return {};
    }
    fs::rename(path + "-wal", kept + "-wal", error);
    destroyPersistentStore(path);
    return kept;
}

}  // namespace tb
