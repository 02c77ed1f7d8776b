#include "tunebrook-service/routes/StreamRoutes.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/IdText.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

using nlohmann::json;

namespace {

// A device's play of a song counts again once this long (or the song's length, when longer)
// has passed since its last counted play.
constexpr double kMinReplaySeconds = 300;

json optionalText(const std::optional<std::string>& value) {
    return value ? json(*value) : json();
}

// The album or playlist a stream is asked for must hold the song.
bool contextHolds(ApiCall& call, ServiceContext& context, const MusicRow& song) {
    if (auto album = call.param("album_id")) {
        auto id = IdText::parse(*album);
        if (!id || *id != song.albumId) {
            Reply::error(call.response, 400, kBadRequest, "The song isn't on this album");
            return false;
        }
    }
    if (auto playlist = call.param("playlist_id")) {
        auto id = IdText::parse(*playlist);
        auto row = id ? context.playlists.byId(*id) : std::nullopt;
        if (!row || !CatalogueView::visible(*row, call.accountId) ||
            !context.playlists.contains(row->id, song.id)) {
            Reply::error(call.response, 400, kBadRequest, "The song isn't in this playlist");
            return false;
        }
    }
    return true;
}

void timeReport(ApiCall& call,
                ServiceContext& context,
                const MusicRow& song,
                const std::string& time) {
    if (time.empty() || time.size() > 6 ||
        time.find_first_not_of("0123456789") != std::string::npos) {
        Reply::error(call.response, 400, kBadRequest, "Invalid time");
        return;
    }
    context.events.record("time_report", call.accountId,
                          {{"music_id", std::to_string(song.id)},
                           {"time", time},
                           {"session", optionalText(call.param("session"))},
                           {"section", optionalText(call.param("section"))}},
                          call.now);
    Reply::json(call.response, {{"results", true}});
}

void play(ApiCall& call, ServiceContext& context) {
    auto id = IdText::parse(call.capture(0));
    auto song = id ? context.music.byId(*id) : std::nullopt;
    if (!song || song->type != "song") {
        Reply::error(call.response, 404, kNotFound, "This song doesn't exist");
        return;
    }
    if (song->takenDown()) {
        Reply::error(call.response, 404, kTakenDown, "This song is no longer available");
        return;
    }
    if (song->geoRestricted) {
        Reply::error(call.response, 403, kGeoRestricted,
                     "This song is not available in your country");
        return;
    }
    if (auto time = call.param("time")) {
        timeReport(call, context, *song, *time);
        return;
    }
    if (!contextHolds(call, context, *song)) {
        return;
    }
    auto session = call.param("session");
    double replayAfter = std::max<double>(static_cast<double>(song->duration), kMinReplaySeconds);
    bool counted = session && context.music.countPlay(song->id, &*session, call.now, replayAfter);
    context.events.record("play", call.accountId,
                          {{"music_id", std::to_string(song->id)},
                           {"session", optionalText(session)},
                           {"section", optionalText(call.param("section"))},
                           {"album_id", optionalText(call.param("album_id"))},
                           {"playlist_id", optionalText(call.param("playlist_id"))},
                           {"hq", call.param("hq").value_or("") == "1"},
                           {"counted", counted}},
                          call.now);
    // The answer is the address itself, a JSON string.
    Reply::json(call.response, context.urls.streamUrl(song->id, call.now));
}

}  // namespace

void StreamRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("POST", "music/(\\d{1,18})/play", Access::consumer,
               [&context](ApiCall& call) { play(call, context); });
}

}  // namespace tb::service
