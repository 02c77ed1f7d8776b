#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "tunebrook-service/core/SqlValue.h"

struct sqlite3;

namespace tb::service {

class Statement;

// One SQLite connection shared by the request threads. Every user takes `mutex()` for the
// span of its work (stores do it for you), so statements never interleave.
class Database {
  public:
    // Opens (creating if needed) the file in WAL mode. Null with a message on failure.
    static std::unique_ptr<Database> open(const std::string& path, std::string& error);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    bool exec(const std::string& sql, std::string* error = nullptr);
    Statement prepare(const std::string& sql);
    // Runs a query with bound values under the lock and hands each row to `row`.
    void each(const std::string& sql,
              const SqlValues& values,
              const std::function<void(const Statement&)>& row);
    int64_t lastInsertId() const;
    int changes() const;
    std::recursive_mutex& mutex() { return mutex_; }

  private:
    explicit Database(sqlite3* db) : db_(db) {}
    sqlite3* db_;
    std::recursive_mutex mutex_;
};

// Holds the connection's lock and a BEGIN IMMEDIATE; rolls back unless committed.
class Transaction {
  public:
    explicit Transaction(Database& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    bool commit();

  private:
    Database& db_;
    std::lock_guard<std::recursive_mutex> lock_;
    bool done_ = false;
};

}  // namespace tb::service
