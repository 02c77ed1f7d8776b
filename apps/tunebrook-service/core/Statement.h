#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace tb::service {

// A prepared statement with 1-based binds and 0-based columns. A statement that failed to
// prepare reports `ok() == false` and yields no rows, so callers treat it as empty.
class Statement {
  public:
    Statement(sqlite3* db, const std::string& sql);
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    Statement& operator=(Statement&&) = delete;

    bool ok() const { return stmt_ != nullptr; }

    Statement& bind(int index, int64_t value);
    Statement& bind(int index, int value) { return bind(index, static_cast<int64_t>(value)); }
    Statement& bind(int index, double value);
    Statement& bind(int index, std::string_view value);
    Statement& bind(int index, const std::string& value) {
        return bind(index, std::string_view(value));
    }
    Statement& bind(int index, const char* value) { return bind(index, std::string_view(value)); }
    Statement& bindNull(int index);
    Statement& bind(int index, const std::optional<std::string>& value);

    // Binds every argument in order, starting at 1.
    template <typename... Args>
    Statement& with(const Args&... args) {
        int index = 1;
        (bind(index++, args), ...);
        return *this;
    }

    // Advances to the next row; false at the end or on an error.
    bool step();
    // Runs a statement that returns no rows; true when it completed.
    bool run();
    void reset();

    int64_t int64(int column) const;
    double real(int column) const;
    std::string text(int column) const;
    bool isNull(int column) const;
    int columns() const;

  private:
    sqlite3* db_;
    sqlite3_stmt* stmt_ = nullptr;
};

}  // namespace tb::service
