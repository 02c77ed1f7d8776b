#include "tunebrook-service/catalogue/ItemJson.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/media/MediaUrlSigner.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr int kListImageWidth = 275;

std::string yesNo(bool value) {
    return value ? "yes" : "no";
}

// Slashes escaped as "\/" and, for some, the whole link in double quotes: the forms that the
// client's cleaning of links is there for.
std::string roughLink(const std::string& link, int64_t id) {
    if (link.empty() || id % 2 != 0) {
        return link;
    }
    std::string out;
    for (char c : link) {
        if (c == '/') {
            out += "\\/";
        } else {
            out.push_back(c);
        }
    }
    return id % 5 == 1 ? "\"" + out + "\"" : out;
}

// A waveform of 120 samples, shaped by the id.
std::string volumeData(int64_t id) {
    std::string out;
    uint64_t x = static_cast<uint64_t>(id) * 2654435761ULL + 12345;
    for (int i = 0; i < 120; ++i) {
        x = x * 6364136223846793005ULL + 1442695040888963407ULL;
        int value = 10 + static_cast<int>((x >> 33) % 80);
        if (i > 0) {
            out += ",";
        }
        out += std::to_string(value);
    }
    return out;
}

json date(double seconds, int64_t id) {
    if (id % 7 == 0) {
        return std::to_string(static_cast<int64_t>(seconds));
    }
    return seconds;
}

}  // namespace

json ItemJson::counter(int64_t value, int64_t id) {
    if (id % 2 == 0) {
        return std::to_string(value);
    }
    return value;
}

json ItemJson::id(int64_t value) {
    if (value % 3 == 0) {
        return value;
    }
    return std::to_string(value);
}

std::string ItemJson::streamUrl(const MusicRow& row) const {
    if (row.type != "song" || row.takenDown()) {
        return {};
    }
    return urls_.streamUrl(row.id, now_());
}

json ItemJson::uploader(const AccountRow& row) const {
    return {{"id", std::to_string(row.id)},
            {"name", row.name},
            {"url_slug", row.slug},
            {"verified", row.verified},
            {"twitter", row.twitter},
            {"image", urls_.imageUrl(row.image)},
            {"followers_count", counter(row.baseFollowers, row.id)}};
}

json ItemJson::stats(const MusicRow& row) const {
    return {{"plays", counter(row.playsTotal, row.id)},
            {"favorites", counter(row.favorites, row.id)},
            {"reposts", counter(row.reposts, row.id)},
            {"playlists", counter(row.playlisted, row.id)}};
}

void ItemJson::addRankings(json& item, const int64_t ranks[5]) {
    item["stats"]["rankings"] = {{"daily", std::to_string(ranks[0])},
                                 {"weekly", std::to_string(ranks[1])},
                                 {"monthly", std::to_string(ranks[2])},
                                 {"yearly", std::to_string(ranks[3])},
                                 {"total", std::to_string(ranks[4])}};
}

json ItemJson::common(const MusicRow& row) const {
    std::string image = urls_.imageUrl(row.image);
    json item = {
        {"id", id(row.id)},
        {"type", row.type},
        {"artist", row.artist},
        {"title", row.title},
        {"url_slug", row.slug},
        {"image", image.empty() ? image : image + "?width=" + std::to_string(kListImageWidth)},
        {"image_base", row.id % 10 == 0 ? std::string() : image},
        {"description", row.description},
        {"featuring", row.featuring},
        {"producer", row.producer},
        {"genre", row.genre},
        {"uploader", uploader(row.uploader)},
        {"buy_link", roughLink(row.buyLink, row.id)},
        {"stream_only", yesNo(row.streamOnly)},
        {"video_ad", yesNo(row.videoAd)},
        {"released", date(row.released, row.id)},
        {"geo_restricted", row.geoRestricted},
        {"stats", stats(row)},
        {"duration", row.id % 2 == 1 ? json(std::to_string(row.duration)) : json(row.duration)},
    };
    // An active item sometimes comes without a status at all.
    if (row.status != "active" || row.id % 6 != 0) {
        item["status"] = row.status;
    }
    if (!row.repostedBy.empty()) {
        item["repost_artist"] = {{"name", row.repostedBy}};
        item["repost_ts"] = std::to_string(static_cast<int64_t>(row.repostedAt));
    }
    return item;
}

json ItemJson::song(const MusicRow& row) const {
    json item = common(row);
    item["streaming_url"] = streamUrl(row);
    item["amp"] = row.id % 29 == 0;
    item["amp_duration"] = row.id % 29 == 0 ? "30" : "0";
    // Every fourth song has no waveform.
    item["volume_data"] = row.id % 4 == 0 ? std::string() : volumeData(row.id);
    return item;
}

json ItemJson::album(const MusicRow& row, const std::vector<MusicRow>& tracks) const {
    json item = common(row);
    json list = json::array();
    for (const auto& track : tracks) {
        list.push_back(albumTrack(track, row.id));
    }
    item["tracks"] = std::move(list);
    return item;
}

json ItemJson::albumTrack(const MusicRow& row, int64_t albumId) const {
    json track = {
        {"title", row.title},
        {"streaming_url", streamUrl(row)},
        {"url_slug", row.slug},
        {"uploader", {{"url_slug", row.uploader.slug}}},
        {"buy_link", roughLink(row.buyLink, row.id)},
        {"duration", std::to_string(row.duration)},
        {"amp", false},
        {"amp_duration", "0"},
        {"featuring", row.featuring},
        // Some tracks leave artist and genre empty: the album's apply to them.
        {"artist", row.id % 6 == 0 ? std::string() : row.artist},
        {"genre", row.id % 5 == 0 ? std::string() : row.genre},
        {"status", row.status},
        {"geo_restricted", row.geoRestricted},
        {"volume_data", row.id % 4 == 0 ? std::string() : volumeData(row.id)},
    };
    // The song's id comes as "song_id", as "id", or as both, where "id" then names the
    // track's place in the album and is no song at all.
    switch (row.id % 3) {
        case 0:
            track["song_id"] = std::to_string(row.id);
            break;
        case 1:
            track["id"] = id(row.id);
            break;
        default:
            track["song_id"] = row.id;
            track["id"] = "t" + std::to_string(albumId) + "-" + std::to_string(row.trackNumber);
            break;
    }
    return track;
}

json ItemJson::music(const MusicRow& row, const std::vector<MusicRow>& tracks) const {
    return row.type == "album" ? album(row, tracks) : song(row);
}

json ItemJson::playlist(const PlaylistRow& row, const std::vector<MusicRow>* tracks) const {
    std::string image = urls_.imageUrl(row.image);
    json owner = uploader(row.owner);
    json item = {
        {"id", id(row.id)},
        {"type", "playlist"},
        {"title", row.title},
        {"url_slug", row.slug},
        {"artist", owner},
        {"image", image.empty() ? image : image + "?width=" + std::to_string(kListImageWidth)},
        {"image_base", row.id % 10 == 0 ? std::string() : image},
        {"image_banner", urls_.imageUrl(row.banner)},
        {"track_count", counter(row.trackCount, row.id)},
        {"private", yesNo(row.isPrivate)},
        {"created", date(row.created, row.id)},
        {"updated", date(row.updated, row.id)},
        {"genre", row.genre},
        {"description", row.description},
        {"stats",
         {{"plays", counter(row.plays, row.id)}, {"favorites", counter(row.favorites, row.id)}}},
    };
    if (tracks) {
        json list = json::array();
        for (const auto& track : *tracks) {
            list.push_back(song(track));
        }
        item["tracks"] = std::move(list);
    }
    return item;
}

json ItemJson::artist(const AccountRow& row, const ArtistCounts& counts, const json& pinned) const {
    return {
        {"id", id(row.id)},
        {"type", "artist"},
        {"name", row.name},
        {"url_slug", row.slug},
        {"url", row.website},
        {"image", urls_.imageUrl(row.image)},
        {"image_banner", urls_.imageUrl(row.banner)},
        {"bio", row.bio},
        {"hometown", row.hometown},
        {"label", row.label},
        {"genre", row.genre},
        {"facebook", row.facebook},
        {"twitter", row.twitter},
        {"instagram", row.instagram},
        {"youtube", row.youtube},
        {"created", row.created},
        {"verified", row.verified},
        {"is_admin", false},
        {"can_comment", true},
        {"favorites_count", counter(counts.favorites, row.id)},
        {"feed_count", counter(counts.uploads + counts.reposts, row.id)},
        {"followers_count", counter(counts.followers, row.id)},
        {"following_count", counter(counts.following, row.id)},
        {"playlists_count", counter(counts.playlists, row.id)},
        {"upload_count_excluding_reups", counter(counts.uploads, row.id)},
        {"stats", {{"plays-ram", counter(counts.plays, row.id)}}},
        {"pinned", pinned.is_array() ? pinned : json::array()},
    };
}

}  // namespace tb::service
