// The mapper from the service's account answers to Artist records (detached).

#include <memory>

#include "model/Artist.h"
#include "model/MapperReadings.h"
#include "platform/JSON.h"

namespace tb {

ArtistPtr Artist::parseFrom(const JSON& json) {
    // Only what is no account at all gives no record. An account without an id is still
    // read (its id is then ""): a featured spot or a notification's actor shows it by name.
    if (!json.isDictionary()) {
        return nullptr;
    }
    using R = MapperReadings;
    auto artist = std::make_shared<Artist>();
    artist->admin = json["is_admin"].boolValue();
    artist->artistId = json["id"].stringValue();
    artist->banner = json["image_banner"].string();
    artist->bio = json["bio"].string();
    artist->canComment = json["can_comment"].boolValue();
    artist->created = R::secondsSince1970(json["created"]);
    artist->facebook = json["facebook"].string();
    artist->genre = json["genre"].string();
    artist->hometown = json["hometown"].string();
    artist->image = json["image"].string();
    artist->instagram = json["instagram"].string();
    artist->label = json["label"].string();
    artist->name = json["name"].string();
    artist->twitter = json["twitter"].string();
    artist->url = json["url"].string();
    artist->urlSlug = json["url_slug"].string();
    artist->youtube = json["youtube"].string();
    artist->favoritesCount = R::integerFromText(json["favorites_count"]);
    artist->feedCount = R::integerFromText(json["feed_count"]);
    artist->followersCount = R::integerFromText(json["followers_count"]);
    artist->followingCount = R::integerFromText(json["following_count"]);
    artist->playlistsCount = R::integerFromText(json["playlists_count"]);
    artist->followed = false;  // the social actions set it, never the answer
    artist->pinnedCount = static_cast<std::int64_t>(json["pinned"].arrayValue().size());
    artist->playsCount = R::integerFromText(json["stats"]["plays-ram"]);
    // Deliberately read from "playlists_count".
    artist->reupsCount = R::integerFromText(json["playlists_count"]);
    // One key, two flags, as for uploaders.
    artist->tastemaker = R::isTastemaker(json["verified"]);
    artist->uploadsCount = R::integerFromText(json["upload_count_excluding_reups"]);
    artist->verified = R::isYes(json["verified"]);
    return artist;
}

}  // namespace tb
