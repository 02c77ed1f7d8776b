#include "tunebrook-service/routes/NotificationJson.h"

#include <cmath>
#include <ctime>

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"

namespace tb::service {

using nlohmann::json;

std::string NotificationJson::timestamp(double seconds) {
    auto whole = static_cast<time_t>(std::floor(seconds));
    auto micros = static_cast<long>((seconds - std::floor(seconds)) * 1e6);
    std::tm utc{};
    gmtime_r(&whole, &utc);
    char buffer[64];
    std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S", &utc);
    char out[80];
    std::snprintf(out, sizeof out, "%s.%06ld", buffer, micros);
    return out;
}

json NotificationJson::build(ServiceContext& context, const NotificationRow& row) {
    auto actor = context.accounts.byId(row.actorId);
    if (!actor) {
        return json();
    }
    json item = {{"verb", row.verb},
                 {"created_at", timestamp(row.created)},
                 {"actor", context.view.artist(*actor, false)},
                 {"seen", row.seen}};
    if (row.objectKind == "music") {
        auto music = context.music.byId(row.objectId);
        if (!music) {
            return json();
        }
        item["object"] = context.view.music(*music);
    } else if (row.objectKind == "playlist") {
        auto playlist = context.playlists.byId(row.objectId);
        if (!playlist) {
            return json();
        }
        item["object"] = context.view.playlist(*playlist, false);
    }
    if (row.targetId != 0) {
        if (auto target = context.playlists.byId(row.targetId)) {
            item["target"] = context.view.playlist(*target, false);
        }
    }
    if (row.verb == "comment") {
        json extra = {{"comment", row.comment}};
        if (!row.parent.empty()) {
            extra["parent"] = row.parent;
        }
        item["extra_context"] = extra;
    }
    return item;
}

}  // namespace tb::service
