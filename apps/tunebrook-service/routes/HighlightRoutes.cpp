#include "tunebrook-service/routes/HighlightRoutes.h"

#include <set>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/ListReply.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/routes/HighlightEntities.h"

namespace tb::service {

using nlohmann::json;

namespace {

// True when the entity names an item that exists, is of that kind, and may be shown.
bool exists(ServiceContext& context, const PinnedEntity& entity, int64_t me) {
    if (entity.kind == "playlist") {
        auto row = context.playlists.byId(entity.id);
        return row && CatalogueView::visible(*row, me);
    }
    auto row = context.music.byId(entity.id);
    return row && row->type == entity.kind && !row->takenDown();
}

void write(ApiCall& call, ServiceContext& context) {
    auto account = context.accounts.bySlug(call.capture(0));
    if (!account) {
        Reply::error(call.response, 404, kNotFound, "This account doesn't exist");
        return;
    }
    if (account->id != *call.accountId) {
        Reply::error(call.response, 403, kForbidden, "Only the account itself can do this");
        return;
    }
    auto entities = HighlightEntities::read(
        call.params, call.request.get_header_value("Content-Type"), call.body.text);
    if (!entities) {
        Reply::error(call.response, 400, kBadRequest, "Invalid entities");
        return;
    }
    std::vector<PinnedEntity> unique;
    std::set<std::pair<std::string, int64_t>> seen;
    json logged = json::array();
    for (const auto& entity : *entities) {
        if (!exists(context, entity, account->id)) {
            Reply::error(call.response, 400, kBadRequest,
                         "Unknown " + entity.kind + " " + std::to_string(entity.id));
            return;
        }
        if (seen.emplace(entity.kind, entity.id).second) {
            unique.push_back(entity);
            logged.push_back({{"kind", entity.kind}, {"id", std::to_string(entity.id)}});
        }
    }
    if (unique.size() > HighlightRoutes::kLimit) {
        Reply::error(call.response, 400, kBadRequest, "No more than 4 highlights");
        return;
    }
    context.library.replacePinned(account->id, unique);
    context.events.record("highlights", account->id,
                          {{"method", call.request.method}, {"entities", logged}}, call.now);
    ListReply::results(call, context.view.pinned(account->id, account->id));
}

}  // namespace

void HighlightRoutes::install(ApiRouter& router, ServiceContext& context) {
    for (const char* method : {"POST", "DELETE", "PUT"}) {
        router.add(method, "artist/([a-z0-9-]{1,65})/pinned", Access::user,
                   [&context](ApiCall& call) { write(call, context); });
    }
}

}  // namespace tb::service
