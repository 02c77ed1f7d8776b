#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

#include "model/store/SqliteError.h"

struct sqlite3;

namespace tb {

class SqliteStatement;

// One SQLite connection, used from one thread. Closing it finalizes every statement it
// prepared that is still alive, so no statement can keep a closed file half open.
class SqliteDatabase {
  public:
    // Opens the file for reading and writing, creating it when missing. SQLite reads nothing
    // yet: a file that is not a database fails at the first statement.
    static std::unique_ptr<SqliteDatabase> open(const std::string& path, SqliteError* error);

    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    // Runs one or more statements that return no rows.
    bool execute(std::string_view sql, SqliteError* error = nullptr);
    std::unique_ptr<SqliteStatement> prepare(std::string_view sql, SqliteError* error = nullptr);

    std::int64_t lastInsertRowId() const;
    // True between BEGIN and COMMIT/ROLLBACK.
    bool inTransaction() const;
    SqliteError lastError() const;
    const std::string& path() const { return path_; }
    sqlite3* handle() const { return db_; }

  private:
    friend class SqliteStatement;
    SqliteDatabase(sqlite3* db, std::string path);

    sqlite3* db_;
    std::string path_;
    std::unordered_set<SqliteStatement*> statements_;
};

}  // namespace tb
