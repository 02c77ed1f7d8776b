#include "tunebrook-service/routes/DownloadRoutes.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/IdText.h"
#include "tunebrook-service/http/ListReply.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr int kDefaultLimit = 50;
constexpr int kMaxLimit = 100;
// A device reports its whole library at once; the body limit bounds it before this does.
constexpr size_t kMaxIds = 20000;

void list(ApiCall& call, ServiceContext& context) {
    int limit = kDefaultLimit;
    if (auto text = call.param("limit")) {
        auto value = IdText::parse(*text);
        if (!value || *value < 1 || *value > kMaxLimit) {
            Reply::error(call.response, 400, kBadRequest, "Invalid limit");
            return;
        }
        limit = static_cast<int>(*value);
    }
    int offset = 0;
    if (!ListReply::readToken(call, offset)) {
        return;
    }
    // Playlists are never reported as downloads; other categories filter by type.
    std::string type = call.param("type").value_or("all");
    std::string where =
        "m.status = 'active' AND m.id IN (SELECT music_id FROM downloads WHERE account_id = ?1)";
    if (type == "songs" || type == "song") {
        where += " AND m.type = 'song'";
    } else if (type == "albums" || type == "album") {
        where += " AND m.type = 'album'";
    } else if (type == "playlists" || type == "playlist") {
        ListReply::withToken(call, json::array(), offset, limit);
        return;
    }
    auto rows =
        context.music.find(where +
                               " ORDER BY (SELECT created FROM downloads WHERE account_id = ?1 AND "
                               "music_id = m.id) DESC, m.id",
                           {*call.accountId}, offset, limit + 1);
    ListReply::withToken(call, context.view.musicList(rows), offset, limit);
}

void add(ApiCall& call, ServiceContext& context) {
    auto parts = IdText::split(call.param("music_id").value_or(""), kMaxIds);
    if (!parts) {
        Reply::error(call.response, 400, kBadRequest, "Too many ids");
        return;
    }
    if (parts->empty()) {
        Reply::error(call.response, 400, kBadRequest, "Give music_id");
        return;
    }
    json added = json::array();
    json ignored = json::array();
    for (const auto& text : *parts) {
        auto id = IdText::parse(text);
        auto row = id ? context.music.byId(*id) : std::nullopt;
        if (!row) {
            ignored.push_back(text.substr(0, 40));
            continue;
        }
        context.library.addDownload(*call.accountId, row->id, call.now);
        added.push_back(std::to_string(row->id));
    }
    context.events.record("downloads_added", call.accountId, {{"ids", added}, {"ignored", ignored}},
                          call.now);
    Reply::json(call.response, {{"added", added}, {"ignored", ignored}});
}

void remove(ApiCall& call, ServiceContext& context) {
    auto id = IdText::parse(call.capture(0));
    if (!id) {
        Reply::error(call.response, 404, kNotFound, "Not in the downloads");
        return;
    }
    // Removing what is already gone succeeds: the list is as the listener asked either way.
    bool removed = context.library.removeDownload(*call.accountId, *id);
    context.events.record("download_removed", call.accountId,
                          {{"id", call.capture(0)}, {"was_listed", removed}}, call.now);
    Reply::json(call.response, {{"results", true}});
}

}  // namespace

void DownloadRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("GET", "user/downloads", Access::user,
               [&context](ApiCall& call) { list(call, context); });
    router.add("POST", "user/downloads", Access::user,
               [&context](ApiCall& call) { add(call, context); });
    router.add("DELETE", "user/downloads/(\\d{1,18})", Access::user,
               [&context](ApiCall& call) { remove(call, context); });
}

}  // namespace tb::service
