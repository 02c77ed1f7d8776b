#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace tb::service {

class Database;

// What the service was told, for tests and the demo to check: plays, time reports, logins,
// download lists, highlight writes, refused requests. Kept in the database, so it survives a
// restart until it is cleared.
class EventLog {
  public:
    explicit EventLog(Database& db) : db_(db) {}

    void record(const std::string& kind,
                std::optional<int64_t> accountId,
                const nlohmann::json& data,
                double now);
    // {"events": [...], "counts": {kind: n}}; `kind` filters, `sinceId` skips older events.
    nlohmann::json report(const std::string& kind, int64_t sinceId);
    void clear();

  private:
    Database& db_;
};

}  // namespace tb::service
