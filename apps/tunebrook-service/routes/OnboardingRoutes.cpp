#include "tunebrook-service/routes/OnboardingRoutes.h"

#include <set>

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr size_t kArtists = 6;
constexpr int kPlaylistsLooked = 200;

// The owners of the most played public playlists, each with that playlist (with its tracks):
// {"results": [{"artist": ..., "playlist": ...}, ...]}.
void onboardingItems(ApiCall& call, ServiceContext& context) {
    json results = json::array();
    std::set<int64_t> owners;
    auto rows = context.playlists.find("p.private = 0 ORDER BY p.plays DESC, p.id", {}, 0,
                                       kPlaylistsLooked);
    for (const auto& row : rows) {
        if (results.size() >= kArtists || !owners.insert(row.owner.id).second) {
            continue;
        }
        auto owner = context.accounts.byId(row.owner.id);
        if (!owner) {
            continue;
        }
        results.push_back({{"artist", context.view.artist(*owner, false)},
                           {"playlist", context.view.playlist(row, true)}});
    }
    context.events.record("onboarding_items", call.accountId, {{"artists", results.size()}},
                          call.now);
    Reply::json(call.response, {{"results", results}});
}

}  // namespace

void OnboardingRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("GET", "onboarding-items", Access::consumer,
               [&context](ApiCall& call) { onboardingItems(call, context); });
}

}  // namespace tb::service
