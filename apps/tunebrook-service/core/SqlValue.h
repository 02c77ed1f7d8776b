#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace tb::service {

// A value bound to a placeholder of a query that is put together from fixed fragments:
// text from a request only ever reaches SQL this way.
using SqlValue = std::variant<int64_t, double, std::string>;
using SqlValues = std::vector<SqlValue>;

class Statement;

// Binds the values to the placeholders 1..n of the statement.
void bindValues(Statement& statement, const SqlValues& values);

}  // namespace tb::service
