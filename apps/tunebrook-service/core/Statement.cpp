#include "tunebrook-service/core/Statement.h"

#include <sqlite3.h>

namespace tb::service {

Statement::Statement(sqlite3* db, const std::string& sql) : db_(db) {
    if (sqlite3_prepare_v2(db_, sql.c_str(), static_cast<int>(sql.size()), &stmt_, nullptr) !=
        SQLITE_OK) {
        sqlite3_finalize(stmt_);
        stmt_ = nullptr;
    }
}

Statement::~Statement() {
    sqlite3_finalize(stmt_);
}

Statement::Statement(Statement&& other) noexcept : db_(other.db_), stmt_(other.stmt_) {
    other.stmt_ = nullptr;
}

Statement& Statement::bind(int index, int64_t value) {
    if (stmt_) {
        sqlite3_bind_int64(stmt_, index, value);
    }
    return *this;
}

Statement& Statement::bind(int index, double value) {
    if (stmt_) {
        sqlite3_bind_double(stmt_, index, value);
    }
    return *this;
}

Statement& Statement::bind(int index, std::string_view value) {
    if (stmt_) {
        sqlite3_bind_text(stmt_, index, value.data(), static_cast<int>(value.size()),
                          SQLITE_TRANSIENT);
    }
    return *this;
}

Statement& Statement::bindNull(int index) {
    if (stmt_) {
        sqlite3_bind_null(stmt_, index);
    }
    return *this;
}

Statement& Statement::bind(int index, const std::optional<std::string>& value) {
    return value ? bind(index, *value) : bindNull(index);
}

bool Statement::step() {
    return stmt_ && sqlite3_step(stmt_) == SQLITE_ROW;
}

bool Statement::run() {
    if (!stmt_) {
        return false;
    }
    int rc = sqlite3_step(stmt_);
    return rc == SQLITE_DONE || rc == SQLITE_ROW;
}

void Statement::reset() {
    if (stmt_) {
        sqlite3_reset(stmt_);
        sqlite3_clear_bindings(stmt_);
    }
}

int64_t Statement::int64(int column) const {
    return stmt_ ? sqlite3_column_int64(stmt_, column) : 0;
}

double Statement::real(int column) const {
    return stmt_ ? sqlite3_column_double(stmt_, column) : 0.0;
}

std::string Statement::text(int column) const {
    if (!stmt_) {
        return {};
    }
    const unsigned char* value = sqlite3_column_text(stmt_, column);
    int size = sqlite3_column_bytes(stmt_, column);
    return value ? std::string(reinterpret_cast<const char*>(value), static_cast<size_t>(size))
                 : std::string();
}

int Statement::columns() const {
    return stmt_ ? sqlite3_column_count(stmt_) : 0;
}

bool Statement::isNull(int column) const {
    return !stmt_ || sqlite3_column_type(stmt_, column) == SQLITE_NULL;
}

}  // namespace tb::service
