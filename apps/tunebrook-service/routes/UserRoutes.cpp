#include "tunebrook-service/routes/UserRoutes.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/ListReply.h"
#include "tunebrook-service/http/Paging.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/routes/NotificationJson.h"
#include "tunebrook-service/state/FeedQuery.h"

namespace tb::service {

using nlohmann::json;

namespace {

// Ids as the record lists them: some numbers, some text.
json idList(const std::vector<int64_t>& ids) {
    json list = json::array();
    for (int64_t id : ids) {
        list.push_back(id % 2 == 0 ? json(id) : json(std::to_string(id)));
    }
    return list;
}

void user(ApiCall& call, ServiceContext& context) {
    auto account = context.accounts.byId(*call.accountId);
    if (!account) {
        Reply::error(call.response, 404, kNotFound, "This account doesn't exist");
        return;
    }
    Reply::json(call.response, UserRoutes::record(context, *account));
}

void feed(ApiCall& call, ServiceContext& context) {
    int offset = 0;
    if (!ListReply::readPage(call, offset)) {
        return;
    }
    bool onlyUploads = call.param("only_uploads").value_or("") == "1";
    auto rows =
        FeedQuery::page(context.music, *call.accountId, onlyUploads, offset, Paging::kPageSize);
    if (offset == 0) {
        context.accounts.setFeedSeen(*call.accountId, call.now);
    }
    ListReply::results(call, context.view.musicList(rows));
}

void notifications(ApiCall& call, ServiceContext& context) {
    int offset = 0;
    if (!ListReply::readToken(call, offset)) {
        return;
    }
    int64_t me = *call.accountId;
    bool onlyUnseen = call.param("only_unseen").value_or("") == "1";
    auto rows = context.notifications.list(me, onlyUnseen, offset, Paging::kPageSize + 1);
    bool more = rows.size() > static_cast<size_t>(Paging::kPageSize);
    if (more) {
        rows.pop_back();
    }
    json results = json::array();
    for (const auto& row : rows) {
        json item = NotificationJson::build(context, row);
        if (!item.is_null()) {
            results.push_back(std::move(item));
        }
    }
    json body = {{"results", results},
                 {"counters", {{"unseen", context.notifications.unseenCount(me)}}}};
    if (more) {
        body["paging_token"] = Paging::token(offset + Paging::kPageSize);
    }
    Reply::json(call.response, body);
}

}  // namespace

json UserRoutes::record(ServiceContext& context, const AccountRow& account) {
    int64_t me = account.id;
    json record = context.view.artist(account, true);
    std::vector<int64_t> ownPlaylists;
    for (const auto& row : context.playlists.find("p.owner_id = ? ORDER BY p.id", {me}, 0, 1000)) {
        ownPlaylists.push_back(row.id);
    }
    record["email"] = account.email.value_or("");
    record["favorite_music"] = idList(context.library.favoriteIds(me, "music"));
    record["favorite_playlists"] = idList(context.library.favoriteIds(me, "playlist"));
    record["playlists"] = idList(ownPlaylists);
    record["following"] = idList(context.library.followingIds(me));
    record["reups"] = idList(context.library.repostIds(me));
    record["new_feed_items"] = FeedQuery::countSince(context.db, me, account.feedSeen);
    return record;
}

void UserRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("GET", "user", Access::user, [&context](ApiCall& call) { user(call, context); });
    router.add("GET", "user/feed", Access::user,
               [&context](ApiCall& call) { feed(call, context); });
    router.add("GET", "user/native-notifications", Access::user,
               [&context](ApiCall& call) { notifications(call, context); });
    router.add("POST", "user/native-notifications/seen", Access::user, [&context](ApiCall& call) {
        int marked = context.notifications.markAllSeen(*call.accountId);
        context.events.record("notifications_seen", call.accountId,
                              {{"marked", marked}, {"for_all", call.param("for_all").value_or("")}},
                              call.now);
        Reply::json(call.response, {{"results", marked}});
    });
}

}  // namespace tb::service
