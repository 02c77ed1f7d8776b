#include "tunebrook-service/state/RowReader.h"

#include <initializer_list>

#include "tunebrook-service/core/Statement.h"

namespace tb::service {

namespace {

std::string columns(const std::string& alias, std::initializer_list<const char*> names) {
    std::string out;
    for (const char* name : names) {
        if (!out.empty()) {
            out += ", ";
        }
        out += alias + "." + name;
    }
    return out;
}

}  // namespace

std::string RowReader::accountColumns(const std::string& alias) {
    return columns(alias, {"id",       "slug",      "name",    "verified",       "genre",
                           "bio",      "hometown",  "label",   "website",        "twitter",
                           "facebook", "instagram", "youtube", "image",          "banner",
                           "created",  "uploader",  "email",   "base_followers", "feed_seen"});
}

std::string RowReader::musicColumns(const std::string& alias) {
    return columns(alias,
                   {"id",           "type",          "slug",           "title",       "artist",
                    "featuring",    "producer",      "genre",          "description", "released",
                    "duration",     "status",        "geo_restricted", "stream_only", "video_ad",
                    "album_id",     "track_number",  "audio",          "image",       "plays_daily",
                    "plays_weekly", "plays_monthly", "plays_yearly",   "plays_total", "favorites",
                    "reposts",      "playlisted",    "buy_link"});
}

std::string RowReader::playlistColumns(const std::string& alias) {
    return columns(alias, {"id", "slug", "title", "genre", "description", "private", "created",
                           "updated", "image", "banner", "plays", "favorites"}) +
           ", (SELECT COUNT(*) FROM playlist_tracks pt WHERE pt.playlist_id = " + alias + ".id)";
}

std::string RowReader::selectMusic() {
    return "SELECT " + musicColumns("m") + ", " + accountColumns("u") +
           " FROM music m JOIN accounts u ON u.id = m.uploader_id";
}

std::string RowReader::selectPlaylists() {
    return "SELECT " + playlistColumns("p") + ", " + accountColumns("o") +
           " FROM playlists p JOIN accounts o ON o.id = p.owner_id";
}

std::string RowReader::limit(int offset, int limit) {
    return " LIMIT " + std::to_string(limit) + " OFFSET " + std::to_string(offset);
}

AccountRow RowReader::account(const Statement& row, int first) {
    AccountRow a;
    int c = first;
    a.id = row.int64(c++);
    a.slug = row.text(c++);
    a.name = row.text(c++);
    a.verified = row.text(c++);
    a.genre = row.text(c++);
    a.bio = row.text(c++);
    a.hometown = row.text(c++);
    a.label = row.text(c++);
    a.website = row.text(c++);
    a.twitter = row.text(c++);
    a.facebook = row.text(c++);
    a.instagram = row.text(c++);
    a.youtube = row.text(c++);
    a.image = row.text(c++);
    a.banner = row.text(c++);
    a.created = row.real(c++);
    a.uploader = row.int64(c++) != 0;
    if (!row.isNull(c)) {
        a.email = row.text(c);
    }
    ++c;
    a.baseFollowers = row.int64(c++);
    a.feedSeen = row.real(c++);
    return a;
}

MusicRow RowReader::music(const Statement& row, int first) {
    MusicRow m;
    int c = first;
    m.id = row.int64(c++);
    m.type = row.text(c++);
    m.slug = row.text(c++);
    m.title = row.text(c++);
    m.artist = row.text(c++);
    m.featuring = row.text(c++);
    m.producer = row.text(c++);
    m.genre = row.text(c++);
    m.description = row.text(c++);
    m.released = row.real(c++);
    m.duration = row.int64(c++);
    m.status = row.text(c++);
    m.geoRestricted = row.int64(c++) != 0;
    m.streamOnly = row.int64(c++) != 0;
    m.videoAd = row.int64(c++) != 0;
    m.albumId = row.int64(c++);
    m.trackNumber = row.int64(c++);
    m.audio = row.text(c++);
    m.image = row.text(c++);
    m.playsDaily = row.int64(c++);
    m.playsWeekly = row.int64(c++);
    m.playsMonthly = row.int64(c++);
    m.playsYearly = row.int64(c++);
    m.playsTotal = row.int64(c++);
    m.favorites = row.int64(c++);
    m.reposts = row.int64(c++);
    m.playlisted = row.int64(c++);
    m.buyLink = row.text(c++);
    m.uploader = account(row, c);
    return m;
}

PlaylistRow RowReader::playlist(const Statement& row, int first) {
    PlaylistRow p;
    int c = first;
    p.id = row.int64(c++);
    p.slug = row.text(c++);
    p.title = row.text(c++);
    p.genre = row.text(c++);
    p.description = row.text(c++);
    p.isPrivate = row.int64(c++) != 0;
    p.created = row.real(c++);
    p.updated = row.real(c++);
    p.image = row.text(c++);
    p.banner = row.text(c++);
    p.plays = row.int64(c++);
    p.favorites = row.int64(c++);
    p.trackCount = row.int64(c++);
    p.owner = account(row, c);
    return p;
}

}  // namespace tb::service
