#include "tunebrook-service/core/SqlValue.h"

#include "tunebrook-service/core/Statement.h"

namespace tb::service {

void bindValues(Statement& statement, const SqlValues& values) {
    int index = 1;
    for (const auto& value : values) {
        std::visit([&](const auto& v) { statement.bind(index, v); }, value);
        ++index;
    }
}

}  // namespace tb::service
