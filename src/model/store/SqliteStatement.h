#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3_stmt;

namespace tb {

class SqliteDatabase;
struct SqliteError;

// One prepared statement. Parameters are numbered from 1, columns from 0. A statement that
// outlives its database turns inert: binds do nothing and steps fail.
class SqliteStatement {
  public:
    enum class Step { row, done, error };
    enum class ColumnType { null, integer, real, text, blob };

    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    void bindNull(int index);
    void bindInt64(int index, std::int64_t value);
    void bindDouble(int index, double value);
    // Copies the bytes.
    void bindText(int index, std::string_view text);
    void bindBlob(int index, std::string_view bytes);
    // No copy: the bytes must stay alive and unchanged until the statement is reset.
    void bindTextNoCopy(int index, std::string_view text);
    void bindBlobNoCopy(int index, std::string_view bytes);

    Step step(SqliteError* error = nullptr);
    // Ends the current run (releasing its read snapshot) and keeps the bindings.
    void reset();
    void clearBindings();

    int columnCount() const;
    ColumnType columnType(int column) const;
    bool columnIsNull(int column) const;
    std::int64_t columnInt64(int column) const;
    double columnDouble(int column) const;
    // Valid until the next step, reset or column read of another type on this column.
    std::string_view columnText(int column) const;
    // The text, or nothing for NULL: one call where columnIsNull and columnText are two.
    std::optional<std::string_view> columnTextIfNotNull(int column) const;
    std::string_view columnBlob(int column) const;
    std::string columnName(int column) const;

    int parameterCount() const;
    const std::string& sql() const { return sql_; }

  private:
    friend class SqliteDatabase;
    SqliteStatement(SqliteDatabase& owner, sqlite3_stmt* statement, std::string sql);
    void finalizeWithOwner();

    SqliteDatabase* owner_;
    sqlite3_stmt* statement_;
    std::string sql_;
};

}  // namespace tb
