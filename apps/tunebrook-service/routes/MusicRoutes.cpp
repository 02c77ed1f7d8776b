#include "tunebrook-service/routes/MusicRoutes.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/IdText.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr size_t kMaxStatusIds = 20000;

void answerMusic(ApiCall& call,
                 ServiceContext& context,
                 const std::optional<MusicRow>& row,
                 const std::string& type) {
    if (!row || row->type != type) {
        Reply::error(call.response, 404, kNotFound, "This " + type + " doesn't exist");
        return;
    }
    Reply::json(call.response, {{"results", context.view.musicDetail(*row)}});
}

void answerLinkedMusic(ApiCall& call, ServiceContext& context) {
    for (const char* type : {"song", "album"}) {
        if (auto row = context.music.bySlug(call.capture(0), type, call.capture(1))) {
            answerMusic(call, context, row, type);
            return;
        }
    }
    Reply::error(call.response, 404, kNotFound, "This music doesn't exist");
}

// The ids that are no longer offered: unknown ones and those taken down. Some go back as
// numbers, the way the service's store hands them out.
void musicStatus(ApiCall& call, ServiceContext& context) {
    auto parts = IdText::split(call.param("music_id").value_or(""), kMaxStatusIds);
    if (!parts) {
        Reply::error(call.response, 400, kBadRequest, "Too many ids");
        return;
    }
    std::vector<int64_t> ids;
    for (const auto& part : *parts) {
        if (auto id = IdText::parse(part)) {
            ids.push_back(*id);
        }
    }
    json removed = json::array();
    for (int64_t id : ids) {
        auto row = context.music.byId(id);
        if (row && !row->takenDown()) {
            continue;
        }
        removed.push_back(id % 2 == 1 ? json(id) : json(std::to_string(id)));
    }
    context.events.record("music_status", call.accountId,
                          {{"asked", ids.size()}, {"removed", removed}}, call.now);
    Reply::json(call.response, removed);
}

void featured(ApiCall& call, ServiceContext& context) {
    std::vector<std::tuple<std::string, std::string, int64_t>> spots;
    {
        std::lock_guard lock(context.db.mutex());
        auto statement =
            context.db.prepare("SELECT label, kind, ref_id FROM featured ORDER BY position");
        while (statement.step()) {
            spots.emplace_back(statement.text(0), statement.text(1), statement.int64(2));
        }
    }
    json results = json::array();
    for (const auto& [label, kind, id] : spots) {
        json ref;
        if (kind == "artist") {
            if (auto row = context.accounts.byId(id)) {
                ref = context.view.artist(*row, false);
            }
        } else if (kind == "playlist") {
            if (auto row = context.playlists.byId(id)) {
                ref = context.view.playlist(*row, false);
            }
        } else if (auto row = context.music.byId(id); row && !row->takenDown()) {
            ref = context.view.music(*row);
        }
        if (!ref.is_null()) {
            results.push_back({{"type", label}, {"ref", ref}});
        }
    }
    Reply::json(call.response, {{"results", results}});
}

}  // namespace

void MusicRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("GET", "music/(album|song)/(\\d{1,18})", Access::consumer,
               [&context](ApiCall& call) {
                   auto id = IdText::parse(call.capture(1));
                   answerMusic(call, context, id ? context.music.byId(*id) : std::nullopt,
                               call.capture(0));
               });
    router.add("GET", "music/([a-z0-9-]{1,65})/(album|song)/([a-z0-9-]{1,65})", Access::consumer,
               [&context](ApiCall& call) {
                   answerMusic(
                       call, context,
                       context.music.bySlug(call.capture(0), call.capture(1), call.capture(2)),
                       call.capture(1));
               });
    // The form that shared links carry: uploader slug, then the song's or album's own slug.
    // Registered after the typed forms, so that "music/song/123" stays an id.
    router.add("GET", "music/([a-z0-9-]{1,65})/([a-z0-9-]{1,65})", Access::consumer,
               [&context](ApiCall& call) { answerLinkedMusic(call, context); });
    router.add("POST", "music/status", Access::consumer,
               [&context](ApiCall& call) { musicStatus(call, context); });
    router.add("GET", "featured", Access::consumer,
               [&context](ApiCall& call) { featured(call, context); });
}

}  // namespace tb::service
