#include "tunebrook-service/state/EventLog.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"

namespace tb::service {

void EventLog::record(const std::string& kind,
                      std::optional<int64_t> accountId,
                      const nlohmann::json& data,
                      double now) {
    std::lock_guard lock(db_.mutex());
    auto statement =
        db_.prepare("INSERT INTO events(ts, kind, account_id, data) VALUES(?, ?, ?, ?)");
    statement.bind(1, now).bind(2, kind);
    if (accountId) {
        statement.bind(3, *accountId);
    } else {
        statement.bindNull(3);
    }
    statement.bind(4, data.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)).run();
}

nlohmann::json EventLog::report(const std::string& kind, int64_t sinceId) {
    std::lock_guard lock(db_.mutex());
    std::string sql = "SELECT id, ts, kind, account_id, data FROM events WHERE id > ?";
    if (!kind.empty()) {
        sql += " AND kind = ?";
    }
    auto statement = db_.prepare(sql + " ORDER BY id");
    statement.bind(1, sinceId);
    if (!kind.empty()) {
        statement.bind(2, kind);
    }
    nlohmann::json events = nlohmann::json::array();
    nlohmann::json counts = nlohmann::json::object();
    while (statement.step()) {
        nlohmann::json event = {{"id", statement.int64(0)},
                                {"ts", statement.real(1)},
                                {"kind", statement.text(2)},
                                {"data", nlohmann::json::parse(statement.text(4), nullptr, false)}};
        event["account_id"] =
            statement.isNull(3) ? nlohmann::json() : nlohmann::json(statement.int64(3));
        std::string eventKind = statement.text(2);
        counts[eventKind] = counts.value(eventKind, 0) + 1;
        events.push_back(std::move(event));
    }
    return {{"events", events}, {"counts", counts}};
}

void EventLog::clear() {
    db_.exec("DELETE FROM events");
}

}  // namespace tb::service
