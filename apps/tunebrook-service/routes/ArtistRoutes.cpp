#include "tunebrook-service/routes/ArtistRoutes.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/ListReply.h"
#include "tunebrook-service/http/Paging.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

using nlohmann::json;

namespace {

const char* const kSlug = "artist/([a-z0-9-]{1,65})";

// Finds the account of the path; writes a 404 and returns null when there is none.
std::optional<AccountRow> pathAccount(ApiCall& call, ServiceContext& context) {
    auto account = context.accounts.bySlug(call.capture(0));
    if (!account) {
        Reply::error(call.response, 404, kNotFound, "This account doesn't exist");
    }
    return account;
}

bool isSelf(const ApiCall& call, const AccountRow& account) {
    return call.accountId && *call.accountId == account.id;
}

void uploads(ApiCall& call, ServiceContext& context, const AccountRow& account) {
    int offset = 0;
    if (!ListReply::readPage(call, offset)) {
        return;
    }
    auto rows = context.music.find(
        "m.uploader_id = ? AND m.album_id = 0 AND m.status = 'active' "
        "ORDER BY m.released DESC, m.id",
        {account.id}, offset, Paging::kPageSize);
    ListReply::results(call, context.view.musicList(rows));
}

// Favourites, newest first, of the category in "show".
void favorites(ApiCall& call, ServiceContext& context, const AccountRow& account) {
    int offset = 0;
    if (!ListReply::readPage(call, offset)) {
        return;
    }
    std::string show = call.param("show").value_or("all");
    bool songs = show == "all" || show == "music" || show == "songs" || show == "song";
    bool albums = show == "all" || show == "music" || show == "albums" || show == "album";
    bool playlists = show == "all" || show == "playlists" || show == "playlist";
    json list = json::array();
    int skipped = 0;
    for (const auto& [kind, id] : context.library.favorites(account.id)) {
        if (list.size() >= static_cast<size_t>(Paging::kPageSize)) {
            break;
        }
        json item;
        if (kind == "playlist" && playlists) {
            auto row = context.playlists.byId(id);
            if (row && CatalogueView::visible(*row, call.accountId)) {
                item = context.view.playlist(*row, false);
            }
        } else if (kind == "music") {
            auto row = context.music.byId(id);
            if (row && !row->takenDown() &&
                ((row->type == "song" && songs) || (row->type == "album" && albums))) {
                item = context.view.music(*row);
            }
        }
        if (item.is_null()) {
            continue;
        }
        if (skipped++ < offset) {
            continue;
        }
        list.push_back(std::move(item));
    }
    ListReply::results(call, list);
}

void playlists(ApiCall& call, ServiceContext& context, const AccountRow& account) {
    int offset = 0;
    if (!ListReply::readPage(call, offset)) {
        return;
    }
    auto rows = context.playlists.find(
        "p.owner_id = ?1 AND (p.private = 0 OR ?2) ORDER BY p.updated DESC, p.id",
        {account.id, static_cast<int64_t>(isSelf(call, account))}, offset, Paging::kPageSize);
    ListReply::results(call, context.view.playlistList(rows));
}

// Token-paged lists of accounts: whom this one follows, or who follows it.
void follows(ApiCall& call, ServiceContext& context, const AccountRow& account, bool following) {
    int offset = 0;
    if (!ListReply::readToken(call, offset)) {
        return;
    }
    std::string where =
        following ? "a.id IN (SELECT artist_id FROM follows WHERE account_id = ?1) ORDER BY "
                    "(SELECT created FROM follows WHERE account_id = ?1 AND artist_id = a.id) DESC"
                  : "a.id IN (SELECT account_id FROM follows WHERE artist_id = ?1) ORDER BY "
                    "(SELECT created FROM follows WHERE artist_id = ?1 AND account_id = a.id) DESC";
    auto rows =
        context.accounts.find(where + ", a.id", {account.id}, offset, Paging::kPageSize + 1);
    ListReply::withToken(call, context.view.artistList(rows), offset, Paging::kPageSize);
}

void suggestions(ApiCall& call, ServiceContext& context) {
    int offset = 0;
    if (!ListReply::readPage(call, offset)) {
        return;
    }
    int64_t me = call.accountId.value_or(0);
    auto rows = context.accounts.find(
        "a.uploader = 1 AND a.id != ?1 AND a.id NOT IN "
        "(SELECT artist_id FROM follows WHERE account_id = ?1) "
        "ORDER BY a.base_followers DESC, a.id",
        {me}, offset, Paging::kPageSize);
    ListReply::results(call, context.view.artistList(rows));
}

using ListHandler = void (*)(ApiCall&, ServiceContext&, const AccountRow&);

void addList(ApiRouter& router,
             ServiceContext& context,
             const std::string& suffix,
             ListHandler handler) {
    router.add("GET", std::string(kSlug) + suffix, Access::consumer,
               [&context, handler](ApiCall& call) {
                   if (auto account = pathAccount(call, context)) {
                       handler(call, context, *account);
                   }
               });
}

}  // namespace

void ArtistRoutes::install(ApiRouter& router, ServiceContext& context) {
    addList(router, context, "", [](ApiCall& call, ServiceContext& ctx, const AccountRow& row) {
        Reply::json(call.response, {{"results", ctx.view.artist(row, isSelf(call, row))}});
    });
    addList(router, context, "/uploads", uploads);
    addList(router, context, "/favorites", favorites);
    addList(router, context, "/playlists", playlists);
    addList(router, context, "/following",
            [](ApiCall& call, ServiceContext& ctx, const AccountRow& row) {
                follows(call, ctx, row, true);
            });
    addList(router, context, "/follows",
            [](ApiCall& call, ServiceContext& ctx, const AccountRow& row) {
                follows(call, ctx, row, false);
            });
    addList(router, context, "/pinned",
            [](ApiCall& call, ServiceContext& ctx, const AccountRow& row) {
                ListReply::results(call, ctx.view.pinned(row.id, call.accountId));
            });
    router.add("GET", "user/follow", Access::consumer,
               [&context](ApiCall& call) { suggestions(call, context); });
}

}  // namespace tb::service
