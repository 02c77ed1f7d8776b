#include "tunebrook-service/routes/ActionRoutes.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/IdText.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

namespace {

bool isPut(const ApiCall& call) {
    return call.request.method == "PUT";
}

void done(ApiCall& call,
          ServiceContext& context,
          const std::string& action,
          bool on,
          const std::string& id,
          bool changed) {
    context.events.record(action, call.accountId,
                          {{"id", id},
                           {"on", on},
                           {"changed", changed},
                           {"section", call.param("section").value_or("")}},
                          call.now);
    Reply::json(call.response, {{"results", on}});
}

void music(ApiCall& call, ServiceContext& context, const std::string& action) {
    auto id = IdText::parse(call.capture(0));
    auto row = id ? context.music.byId(*id) : std::nullopt;
    if (!row || row->takenDown()) {
        Reply::error(call.response, 404, kNotFound, "This music doesn't exist");
        return;
    }
    bool on = isPut(call);
    bool changed =
        action == "favorite"
            ? context.library.setFavorite(*call.accountId, "music", row->id, on, call.now)
            : context.library.setRepost(*call.accountId, row->id, on, call.now);
    if (changed) {
        context.music.addToCounter(row->id, action == "favorite" ? "favorites" : "reposts",
                                   on ? 1 : -1);
    }
    done(call, context, action, on, call.capture(0), changed);
}

void playlist(ApiCall& call, ServiceContext& context) {
    auto id = IdText::parse(call.capture(0));
    auto row = id ? context.playlists.byId(*id) : std::nullopt;
    if (!row || !CatalogueView::visible(*row, call.accountId)) {
        Reply::error(call.response, 404, kNotFound, "This playlist doesn't exist");
        return;
    }
    bool on = isPut(call);
    bool changed = context.library.setFavorite(*call.accountId, "playlist", row->id, on, call.now);
    if (changed) {
        context.playlists.addToCounter(row->id, "favorites", on ? 1 : -1);
    }
    done(call, context, "favorite_playlist", on, call.capture(0), changed);
}

void follow(ApiCall& call, ServiceContext& context) {
    auto artist = context.accounts.bySlug(call.capture(0));
    if (!artist) {
        Reply::error(call.response, 404, kNotFound, "This account doesn't exist");
        return;
    }
    if (artist->id == *call.accountId) {
        Reply::error(call.response, 400, kBadRequest, "An account can't follow itself");
        return;
    }
    bool on = isPut(call);
    bool changed = context.library.setFollow(*call.accountId, artist->id, on, call.now);
    done(call, context, "follow", on, artist->slug, changed);
}

}  // namespace

void ActionRoutes::install(ApiRouter& router, ServiceContext& context) {
    for (const char* method : {"PUT", "DELETE"}) {
        router.add(method, "music/(\\d{1,18})/favorite", Access::user,
                   [&context](ApiCall& call) { music(call, context, "favorite"); });
        router.add(method, "music/(\\d{1,18})/repost", Access::user,
                   [&context](ApiCall& call) { music(call, context, "repost"); });
        router.add(method, "playlist/(\\d{1,18})/favorite", Access::user,
                   [&context](ApiCall& call) { playlist(call, context); });
        router.add(method, "artist/([a-z0-9-]{1,65})/follow", Access::user,
                   [&context](ApiCall& call) { follow(call, context); });
    }
}

}  // namespace tb::service
