#include "tunebrook-service/core/Database.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tunebrook-service/core/Statement.h"

namespace tb::service {

std::unique_ptr<Database> Database::open(const std::string& path, std::string& error) {
    // The file is made private before SQLite opens it: its journal files take its mode.
    int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0 || ::fchmod(file, 0600) != 0) {
        error = "cannot open " + path + ": " + std::strerror(errno);
        if (file >= 0) {
            ::close(file);
        }
        return nullptr;
    }
    ::close(file);
    sqlite3* handle = nullptr;
    int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX;
    if (sqlite3_open_v2(path.c_str(), &handle, flags, nullptr) != SQLITE_OK) {
        error = handle ? sqlite3_errmsg(handle) : "cannot open database";
        sqlite3_close(handle);
        return nullptr;
    }
    std::unique_ptr<Database> db(new Database(handle));
    sqlite3_busy_timeout(handle, 5000);
    // WAL keeps every committed write across a killed process; NORMAL sync is enough for
    // that (only a power cut could lose the last transactions).
    if (!db->exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA foreign_keys=ON;",
                  &error)) {
        return nullptr;
    }
    return db;
}

Database::~Database() {
    sqlite3_close_v2(db_);
}

bool Database::exec(const std::string& sql, std::string* error) {
    std::lock_guard lock(mutex_);
    char* message = nullptr;
    int rc = sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &message);
    if (rc != SQLITE_OK) {
        if (error) {
            *error = message ? message : "sqlite error";
        }
        sqlite3_free(message);
        return false;
    }
    return true;
}

Statement Database::prepare(const std::string& sql) {
    return Statement(db_, sql);
}

void Database::each(const std::string& sql,
                    const SqlValues& values,
                    const std::function<void(const Statement&)>& row) {
    std::lock_guard lock(mutex_);
    Statement statement = prepare(sql);
    bindValues(statement, values);
    while (statement.step()) {
        row(statement);
    }
}

int64_t Database::lastInsertId() const {
    return sqlite3_last_insert_rowid(db_);
}

int Database::changes() const {
    return sqlite3_changes(db_);
}

Transaction::Transaction(Database& db) : db_(db), lock_(db.mutex()) {
    db_.exec("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
    if (!done_) {
        db_.exec("ROLLBACK");
    }
}

bool Transaction::commit() {
    done_ = true;
    return db_.exec("COMMIT");
}

}  // namespace tb::service
