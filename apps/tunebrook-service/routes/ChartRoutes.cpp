#include "tunebrook-service/routes/ChartRoutes.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/catalogue/Vocabulary.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/ListReply.h"
#include "tunebrook-service/http/Paging.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

namespace {

// Listed music: active songs and albums that stand on their own (album tracks are listed
// through their album).
const char* const kListed = "m.album_id = 0 AND m.status = 'active'";

// "all" is no filter; another genre must be one of ours.
bool genreFilter(ApiCall& call, const std::string& genre, std::string& where, SqlValues& values) {
    if (genre.empty() || genre == "all") {
        return true;
    }
    if (!Vocabulary::isGenre(genre)) {
        Reply::error(call.response, 404, kNotFound, "Unknown genre");
        return false;
    }
    where += " AND m.genre = ?";
    values.emplace_back(genre);
    return true;
}

void chart(ApiCall& call,
           ServiceContext& context,
           const std::string& genre,
           const std::string& type,
           const std::string& period) {
    if ((type != "songs" && type != "albums") || !Vocabulary::isPeriod(period)) {
        Reply::error(call.response, 404, kNotFound, "Unknown chart");
        return;
    }
    std::string column = "m.plays_" + period;  // a known period word only
    std::string where = "m.type = ? AND m.status = 'active' AND " + column + " > 0";
    SqlValues values = {type == "songs" ? "song" : "album"};
    int offset = 0;
    if (!genreFilter(call, genre, where, values) || !ListReply::readPage(call, offset)) {
        return;
    }
    auto rows = context.music.find(where + " ORDER BY " + column + " DESC, m.id", values, offset,
                                   Paging::kPageSize);
    ListReply::results(call, context.view.musicList(rows));
}

void listed(ApiCall& call,
            ServiceContext& context,
            const std::string& genre,
            const std::string& order) {
    std::string where = kListed;
    SqlValues values;
    int offset = 0;
    if (!genreFilter(call, genre, where, values) || !ListReply::readPage(call, offset)) {
        return;
    }
    auto rows = context.music.find(where + " ORDER BY " + order, values, offset, Paging::kPageSize);
    ListReply::results(call, context.view.musicList(rows));
}

const char* const kTrendingOrder = "(m.plays_daily * 7 + m.plays_weekly) DESC, m.id";
const char* const kRecentOrder = "m.released DESC, m.id";

}  // namespace

void ChartRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("GET", "chart/([^/]+)/([^/]+)", Access::consumer, [&context](ApiCall& call) {
        chart(call, context, "", call.capture(0), call.capture(1));
    });
    router.add("GET", "([^/]+)/chart/([^/]+)/([^/]+)", Access::consumer, [&context](ApiCall& call) {
        chart(call, context, call.capture(0), call.capture(1), call.capture(2));
    });
    router.add("GET", "music/trending", Access::consumer,
               [&context](ApiCall& call) { listed(call, context, "", kTrendingOrder); });
    router.add("GET", "music/([^/]+)/trending", Access::consumer, [&context](ApiCall& call) {
        listed(call, context, call.capture(0), kTrendingOrder);
    });
    router.add("GET", "music/recent", Access::consumer,
               [&context](ApiCall& call) { listed(call, context, "", kRecentOrder); });
    router.add("GET", "music/([^/]+)/recent", Access::consumer,
               [&context](ApiCall& call) { listed(call, context, call.capture(0), kRecentOrder); });
}

}  // namespace tb::service
