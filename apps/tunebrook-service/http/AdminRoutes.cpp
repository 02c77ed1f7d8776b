#include "tunebrook-service/http/AdminRoutes.h"

#include <set>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/FaultInjector.h"
#include "tunebrook-service/http/IdText.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/state/RemoteConfigStore.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr size_t kMaxBody = 64 * 1024;

using AdminHandler = std::function<void(const httplib::Request&, httplib::Response&, const json&)>;

std::string text(const json& body, const char* key, const std::string& fallback) {
    return body.contains(key) && body[key].is_string() ? body[key].get<std::string>() : fallback;
}

bool loopback(const std::string& address) {
    return address == "127.0.0.1" || address == "::1" || address == "::ffff:127.0.0.1";
}

// Checks the peer and reads the JSON body (an empty body is an empty object).
httplib::Server::Handler guarded(AdminHandler handler) {
    return [handler](const httplib::Request& request, httplib::Response& response) {
        if (!loopback(request.remote_addr)) {
            Reply::error(response, 403, kForbidden, "Admin calls are for this machine only");
            return;
        }
        json body = json::object();
        if (!request.body.empty()) {
            body = request.body.size() <= kMaxBody ? json::parse(request.body, nullptr, false)
                                                   : json(json::value_t::discarded);
            if (body.is_discarded()) {
                Reply::error(response, 400, kBadRequest, "The body is not JSON");
                return;
            }
        }
        handler(request, response, body);
    };
}

void expireTokens(ServiceContext& context, httplib::Response& response, const json& body) {
    double now = context.now();
    int expired = 0;
    if (body.contains("token") && body["token"].is_string()) {
        expired = context.tokens.expireToken(body["token"].get<std::string>(), now);
    } else if (body.contains("account_id")) {
        auto id =
            IdText::parse(body["account_id"].is_string() ? body["account_id"].get<std::string>()
                                                         : body["account_id"].dump());
        expired = id ? context.tokens.expireAccount(*id, now) : 0;
    } else if (body.contains("email") && body["email"].is_string()) {
        auto account = context.accounts.byEmail(body["email"].get<std::string>());
        expired = account ? context.tokens.expireAccount(account->id, now) : 0;
    } else {
        expired = context.tokens.expireAll(now);
    }
    Reply::json(response, {{"expired", expired}});
}

// Unlike expiry, revocation removes the tokens: a request with one is refused as with a token
// the service never issued, at once.
void revokeTokens(ServiceContext& context, httplib::Response& response, const json& body) {
    int revoked = 0;
    if (body.contains("token") && body["token"].is_string()) {
        revoked = context.tokens.revokeToken(body["token"].get<std::string>());
    } else if (body.contains("email") && body["email"].is_string()) {
        auto account = context.accounts.byEmail(body["email"].get<std::string>());
        revoked = account ? context.tokens.revokeAccount(account->id) : 0;
    } else {
        Reply::error(response, 400, kBadRequest, "Give an email or a token");
        return;
    }
    Reply::json(response, {{"revoked", revoked}});
}

void addFaults(FaultInjector& faults, httplib::Response& response, const json& body) {
    json list = body.is_array() ? body : json::array({body});
    json added = json::array();
    for (const auto& entry : list) {
        std::string error;
        std::optional<FaultRule> rule;
        if (entry.is_object() && entry.contains("rule") && entry["rule"].is_string()) {
            rule = FaultRule::parse(entry["rule"].get<std::string>(), error);
        } else {
            rule = FaultRule::fromJson(entry, error);
        }
        if (!rule) {
            Reply::error(response, 400, kBadRequest, error);
            return;
        }
        added.push_back(faults.add(*rule));
    }
    Reply::json(response, {{"added", added}, {"faults", faults.list()}});
}

void setStatus(ServiceContext& context,
               const httplib::Request& request,
               httplib::Response& response,
               const json& body) {
    auto id = IdText::parse(request.matches[1]);
    auto row = id ? context.music.byId(*id) : std::nullopt;
    static const std::set<std::string> statuses = {"active", "suspended", "takedown", "unplayable"};
    std::string status = text(body, "status", row ? row->status : "");
    if (!row || !statuses.count(status)) {
        Reply::error(response, 400, kBadRequest, "Give a known id and status");
        return;
    }
    std::optional<bool> geo;
    if (body.contains("geo_restricted") && body["geo_restricted"].is_boolean()) {
        geo = body["geo_restricted"].get<bool>();
    }
    context.music.setStatus(row->id, status, geo);
    Reply::json(response, {{"results", context.view.music(*context.music.byId(row->id))}});
}

void addNotification(ServiceContext& context, httplib::Response& response, const json& body) {
    NotificationRow row;
    auto number = [&](const char* key) -> int64_t {
        if (!body.contains(key)) {
            return 0;
        }
        auto id =
            IdText::parse(body[key].is_string() ? body[key].get<std::string>() : body[key].dump());
        return id.value_or(0);
    };
    int64_t account = number("account_id");
    row.verb = text(body, "verb", "");
    row.actorId = number("actor_id");
    row.objectKind = text(body, "object_kind", body.contains("object_id") ? "music" : "");
    row.objectId = number("object_id");
    row.targetId = number("target_id");
    row.comment = text(body, "comment", "");
    row.parent = text(body, "parent", "");
    row.created = context.now();
    if (!context.accounts.byId(account) || !context.accounts.byId(row.actorId) ||
        row.verb.empty()) {
        Reply::error(response, 400, kBadRequest, "Give account_id, actor_id and verb");
        return;
    }
    context.notifications.add(account, row);
    Reply::json(response, {{"results", true}});
}

void setRemoteConfig(ServiceContext& context, httplib::Response& response, const json& body) {
    if (!body.is_object()) {
        Reply::error(response, 400, kBadRequest, "Give a JSON object of keys and values");
        return;
    }
    if (!RemoteConfigStore(context.meta).replace(body)) {
        Reply::error(response, 500, kServerError, "The remote values can't be stored");
        return;
    }
    Reply::json(response, {{"results", body}});
}

}  // namespace

void AdminRoutes::install(httplib::Server& server, ServiceContext& context, FaultInjector& faults) {
    server.Get("/admin/health", guarded([](auto&, auto& response, const json&) {
                   Reply::json(response, {{"ok", true}});
               }));
    server.Get("/admin/report", guarded([&context](const httplib::Request& request,
                                                   httplib::Response& response, const json&) {
                   auto since = IdText::parse(request.get_param_value("since"));
                   Reply::json(response, context.events.report(request.get_param_value("kind"),
                                                               since.value_or(0)));
               }));
    server.Delete("/admin/report", guarded([&context](auto&, auto& response, const json&) {
                      context.events.clear();
                      Reply::json(response, {{"ok", true}});
                  }));
    server.Post("/admin/tokens/expire",
                guarded([&context](auto&, auto& response, const json& body) {
                    expireTokens(context, response, body);
                }));
    server.Post("/admin/tokens/revoke",
                guarded([&context](auto&, auto& response, const json& body) {
                    revokeTokens(context, response, body);
                }));
    server.Get("/admin/faults", guarded([&faults](auto&, auto& response, const json&) {
                   Reply::json(response, {{"faults", faults.list()}});
               }));
    server.Post("/admin/faults", guarded([&faults](auto&, auto& response, const json& body) {
                    addFaults(faults, response, body);
                }));
    server.Delete("/admin/faults", guarded([&faults](auto&, auto& response, const json&) {
                      faults.clear();
                      Reply::json(response, {{"faults", faults.list()}});
                  }));
    server.Delete(R"(/admin/faults/(\d{1,9}))",
                  guarded([&faults](const httplib::Request& request, httplib::Response& response,
                                    const json&) {
                      bool removed = faults.remove(std::stoi(request.matches[1]));
                      Reply::json(response, {{"removed", removed}}, removed ? 200 : 404);
                  }));
    server.Post(
        R"(/admin/music/(\d{1,18})/status)",
        guarded([&context](const httplib::Request& request, httplib::Response& response,
                           const json& body) { setStatus(context, request, response, body); }));
    server.Post("/admin/notifications",
                guarded([&context](auto&, auto& response, const json& body) {
                    addNotification(context, response, body);
                }));
    server.Post("/admin/remote-config",
                guarded([&context](auto&, auto& response, const json& body) {
                    setRemoteConfig(context, response, body);
                }));
}

}  // namespace tb::service
