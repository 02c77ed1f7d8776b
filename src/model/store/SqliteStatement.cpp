#include "model/store/SqliteStatement.h"

#include <utility>

#include <sqlite3.h>

#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteError.h"

namespace tb {

SqliteStatement::SqliteStatement(SqliteDatabase& owner, sqlite3_stmt* statement, std::string sql)
    : owner_(&owner), statement_(statement), sql_(std::move(sql)) {
    owner_->statements_.insert(this);
}

SqliteStatement::~SqliteStatement() {
    if (owner_) {
        owner_->statements_.erase(this);
    }
    sqlite3_finalize(statement_);
}

void SqliteStatement::finalizeWithOwner() {
    sqlite3_finalize(statement_);
    statement_ = nullptr;
    owner_ = nullptr;
}

void SqliteStatement::bindNull(int index) {
    sqlite3_bind_null(statement_, index);
}

void SqliteStatement::bindInt64(int index, std::int64_t value) {
    sqlite3_bind_int64(statement_, index, value);
}

void SqliteStatement::bindDouble(int index, double value) {
    sqlite3_bind_double(statement_, index, value);
}

void SqliteStatement::bindText(int index, std::string_view text) {
    sqlite3_bind_text64(statement_, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void SqliteStatement::bindBlob(int index, std::string_view bytes) {
    sqlite3_bind_blob64(statement_, index, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

void SqliteStatement::bindTextNoCopy(int index, std::string_view text) {
    sqlite3_bind_text64(statement_, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

void SqliteStatement::bindBlobNoCopy(int index, std::string_view bytes) {
    sqlite3_bind_blob64(statement_, index, bytes.data(), bytes.size(), SQLITE_STATIC);
}

SqliteStatement::Step SqliteStatement::step(SqliteError* error) {
    if (!statement_) {
        if (error) {
            *error = SqliteError{SQLITE_MISUSE, SQLITE_MISUSE, 0, "the database is closed"};
        }
        return Step::error;
    }
    int rc = sqlite3_step(statement_);
    if (rc == SQLITE_ROW) {
        return Step::row;
    }
    if (rc == SQLITE_DONE) {
        return Step::done;
    }
    if (error) {
        sqlite3* db = sqlite3_db_handle(statement_);
        error->extendedCode = rc;
        error->code = rc & 0xff;
        error->systemErrno = sqlite3_system_errno(db);
        error->message = sqlite3_errmsg(db);
    }
    return Step::error;
}

void SqliteStatement::reset() {
    sqlite3_reset(statement_);
}

void SqliteStatement::clearBindings() {
    sqlite3_clear_bindings(statement_);
}

int SqliteStatement::columnCount() const {
    return sqlite3_column_count(statement_);
}

SqliteStatement::ColumnType SqliteStatement::columnType(int column) const {
    switch (sqlite3_column_type(statement_, column)) {
        case SQLITE_INTEGER:
            return ColumnType::integer;
        case SQLITE_FLOAT:
            return ColumnType::real;
        case SQLITE_TEXT:
            return ColumnType::text;
        case SQLITE_BLOB:
            return ColumnType::blob;
        default:
            return ColumnType::null;
    }
}

bool SqliteStatement::columnIsNull(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

std::int64_t SqliteStatement::columnInt64(int column) const {
    return sqlite3_column_int64(statement_, column);
}

double SqliteStatement::columnDouble(int column) const {
    return sqlite3_column_double(statement_, column);
}

std::string_view SqliteStatement::columnText(int column) const {
    const unsigned char* text = sqlite3_column_text(statement_, column);
    if (!text) {
        return {};
    }
    return {reinterpret_cast<const char*>(text),
            static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::optional<std::string_view> SqliteStatement::columnTextIfNotNull(int column) const {
    // SQLite answers NULL with a null pointer; empty text is an empty string.
    const unsigned char* text = sqlite3_column_text(statement_, column);
    if (!text) {
        return std::nullopt;
    }
    return std::string_view(reinterpret_cast<const char*>(text),
                            static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)));
}

std::string_view SqliteStatement::columnBlob(int column) const {
    const void* bytes = sqlite3_column_blob(statement_, column);
    if (!bytes) {
        return {};
    }
    return {static_cast<const char*>(bytes),
            static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::string SqliteStatement::columnName(int column) const {
    const char* name = sqlite3_column_name(statement_, column);
    return name ? name : "";
}

int SqliteStatement::parameterCount() const {
    return sqlite3_bind_parameter_count(statement_);
}

}  // namespace tb
