#include "model/store/SqliteDatabase.h"

#include <utility>

#include <sqlite3.h>

#include "model/store/SqliteStatement.h"

namespace tb {

namespace {

SqliteError errorOf(sqlite3* db, int code) {
    SqliteError error;
    error.extendedCode = db ? sqlite3_extended_errcode(db) : code;
    if (error.extendedCode == SQLITE_OK) {
        error.extendedCode = code;
    }
    error.code = error.extendedCode & 0xff;
    error.systemErrno = db ? sqlite3_system_errno(db) : 0;
    error.message = db ? sqlite3_errmsg(db) : sqlite3_errstr(code);
    return error;
}

}  // namespace

std::unique_ptr<SqliteDatabase> SqliteDatabase::open(const std::string& path, SqliteError* error) {
    sqlite3* db = nullptr;
    // One connection per thread of use: SQLite's own mutexes would only cost time. A symlink
    // in the path is refused rather than followed out of the app's folders.
    int flags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
    int rc = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
    if (rc != SQLITE_OK) {
        if (error) {
            *error = errorOf(db, rc);
        }
        sqlite3_close(db);
        return nullptr;
    }
    sqlite3_extended_result_codes(db, 1);
    return std::unique_ptr<SqliteDatabase>(new SqliteDatabase(db, path));
}

SqliteDatabase::SqliteDatabase(sqlite3* db, std::string path) : db_(db), path_(std::move(path)) {}

SqliteDatabase::~SqliteDatabase() {
    auto statements = std::move(statements_);
    for (SqliteStatement* statement : statements) {
        statement->finalizeWithOwner();
    }
    sqlite3_close(db_);
}

bool SqliteDatabase::execute(std::string_view sql, SqliteError* error) {
    std::string text(sql);
    char* message = nullptr;
    int rc = sqlite3_exec(db_, text.c_str(), nullptr, nullptr, &message);
    sqlite3_free(message);
    if (rc != SQLITE_OK) {
        if (error) {
            *error = errorOf(db_, rc);
        }
        return false;
    }
    return true;
}

std::unique_ptr<SqliteStatement> SqliteDatabase::prepare(std::string_view sql, SqliteError* error) {
    sqlite3_stmt* statement = nullptr;
    int rc = sqlite3_prepare_v3(db_, sql.data(), static_cast<int>(sql.size()),
                                SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (rc != SQLITE_OK || !statement) {
        if (error) {
            *error = errorOf(db_, rc == SQLITE_OK ? SQLITE_MISUSE : rc);
            if (rc == SQLITE_OK) {
                error->message = "empty statement";
            }
        }
        sqlite3_finalize(statement);
        return nullptr;
    }
    return std::unique_ptr<SqliteStatement>(
        new SqliteStatement(*this, statement, std::string(sql)));
}

std::int64_t SqliteDatabase::lastInsertRowId() const {
    return sqlite3_last_insert_rowid(db_);
}

bool SqliteDatabase::inTransaction() const {
    return sqlite3_get_autocommit(db_) == 0;
}

SqliteError SqliteDatabase::lastError() const {
    return errorOf(db_, sqlite3_extended_errcode(db_));
}

}  // namespace tb
