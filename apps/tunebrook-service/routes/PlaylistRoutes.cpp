#include "tunebrook-service/routes/PlaylistRoutes.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/IdText.h"
#include "tunebrook-service/http/ListReply.h"
#include "tunebrook-service/http/Paging.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

using nlohmann::json;

namespace {

const char* const kTagged =
    "p.private = 0 AND p.id IN (SELECT playlist_id FROM playlist_tags WHERE tag = ?) "
    "ORDER BY p.plays DESC, p.id";

std::optional<int> pathPage(const std::string& text) {
    auto page = IdText::parse(text);
    if (!page || *page < 1 || *page > Paging::kMaxPage) {
        return std::nullopt;
    }
    return static_cast<int>(*page);
}

void categories(ApiCall& call, ServiceContext& context) {
    auto page = pathPage(call.capture(0));
    if (!page) {
        Reply::error(call.response, 400, kBadRequest, "Invalid page");
        return;
    }
    json results = json::array();
    // All categories fit on the first page.
    if (*page == 1) {
        bool withPlaylists = call.param("include_playlists").value_or("yes") != "no";
        for (const auto& tag : context.playlists.tags()) {
            if (!withPlaylists) {
                results.push_back(tag);
                continue;
            }
            auto rows = context.playlists.find(kTagged, {tag}, 0, 5);
            results.push_back({{"tag", tag}, {"playlists", context.view.playlistList(rows)}});
        }
    }
    ListReply::results(call, results);
}

void tagged(ApiCall& call, ServiceContext& context) {
    const std::string& tag = call.capture(0);
    auto page = pathPage(call.capture(1));
    if (!page) {
        Reply::error(call.response, 400, kBadRequest, "Invalid page");
        return;
    }
    if (!context.playlists.tagExists(tag)) {
        Reply::error(call.response, 404, kNotFound, "Unknown category");
        return;
    }
    auto rows =
        context.playlists.find(kTagged, {tag}, (*page - 1) * Paging::kPageSize, Paging::kPageSize);
    ListReply::results(call, context.view.playlistList(rows));
}

void answerPlaylist(ApiCall& call, ServiceContext& context, const std::optional<PlaylistRow>& row) {
    if (!row || !CatalogueView::visible(*row, call.accountId)) {
        Reply::error(call.response, 404, kNotFound, "This playlist doesn't exist");
        return;
    }
    Reply::json(call.response, {{"results", context.view.playlist(*row, true)}});
}

}  // namespace

void PlaylistRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("GET", "playlist/(\\d{1,18})", Access::consumer, [&context](ApiCall& call) {
        auto id = IdText::parse(call.capture(0));
        answerPlaylist(call, context, id ? context.playlists.byId(*id) : std::nullopt);
    });
    // Shared links name a playlist by its owner's slug and its own.
    router.add("GET", "playlist/([a-z0-9-]{1,65})/([a-z0-9-]{1,65})", Access::consumer,
               [&context](ApiCall& call) {
                   answerPlaylist(call, context,
                                  context.playlists.bySlug(call.capture(0), call.capture(1)));
               });
    router.add("GET", "playlist/trending", Access::consumer, [&context](ApiCall& call) {
        int offset = 0;
        if (!ListReply::readPage(call, offset)) {
            return;
        }
        auto rows = context.playlists.find("p.private = 0 ORDER BY p.plays DESC, p.id", {}, offset,
                                           Paging::kPageSize);
        ListReply::results(call, context.view.playlistList(rows));
    });
    router.add("GET", "tags/page/(\\d{1,9})", Access::consumer,
               [&context](ApiCall& call) { categories(call, context); });
    router.add("GET", "tags/([A-Za-z0-9 _-]{1,40})/page/(\\d{1,9})", Access::consumer,
               [&context](ApiCall& call) { tagged(call, context); });
}

}  // namespace tb::service
