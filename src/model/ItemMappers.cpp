// The mappers from the service's song, album and playlist answers to Item records. The
// three shapes differ on purpose (the playlist keeps its owner under "artist", album tracks
// inherit from their album), so each has its own reading. Records made here are detached.

#include <memory>

#include "model/Item.h"
#include "model/MapperReadings.h"
#include "model/TBUtil.h"
#include "model/store/ObjectContext.h"
#include "platform/JSON.h"

namespace tb {

namespace {

// Tracks inside tracks don't occur in real answers; deeper nesting is not followed, so no
// answer can drive the mappers into unbounded recursion.
constexpr int kDeepestTracks = 8;

using R = MapperReadings;

ItemPtr parseSong(const JSON& json, bool ignoreGeoRestricted, int depth, ObjectContext* shared);

std::string joinedIDs(const std::vector<ItemPtr>& entries) {
    std::string joined;
    for (const auto& entry : entries) {
        if (!joined.empty()) {
            joined += ',';
        }
        joined += entry->itemID.value_or("");
    }
    return joined;
}

// The song mapper with the drop flag off for each element; what fails is left out.
std::vector<ItemPtr> parsePlaylistTracks(const JSON& tracks,
                                         const std::string& parentID,
                                         int depth,
                                         ObjectContext* shared) {
    std::vector<ItemPtr> result;
    if (depth > kDeepestTracks) {
        return result;
    }
    for (const JSON& element : tracks.arrayValue()) {
        ItemPtr track = parseSong(element, false, depth, shared);
        if (!track) {
            continue;
        }
        track->parentID = parentID;
        track->isPlaylistTrack = true;
        result.push_back(std::move(track));
    }
    return result;
}

void setItems(Item& playlist, std::vector<ItemPtr> tracks) {
    playlist.itemsIDs = joinedIDs(tracks);
    playlist.hasItems = !tracks.empty();
    playlist.items = std::move(tracks);
}

// One element of an album's "tracks"; `position` counts from 1. An element without any id
// can't be played or stored and is left out.
ItemPtr parseAlbumTrack(const JSON& json, std::int64_t position, ObjectContext* shared) {
    std::string id = json["song_id"].stringValue();
    if (id.empty()) {
        id = json["id"].stringValue();
    }
    if (id.empty()) {
        return nullptr;
    }
    auto track = shared ? shared->makeObject<Item>() : std::make_shared<Item>();
    track->isAlbumTrack = true;
    track->itemID = id;
    track->title = json["title"].string();
    track->url = R::cleaned(json["streaming_url"]);
    track->urlSlug = json["url_slug"].string();
    track->uploaderSlug = json["uploader"]["url_slug"].string();
    track->buyURL = R::cleaned(json["buy_link"]);
    track->duration = R::integerFromText(json["duration"]);
    track->amp = json["amp"].boolValue();
    track->ampDuration = R::integerFromText(json["amp_duration"]);
    track->featured = json["featuring"].string();
    track->artist = json["artist"].string();
    track->genre = json["genre"].string();
    track->status = json["status"].string();
    track->georestricted = json["geo_restricted"].boolValue();
    track->volumeData = R::volumeData(json["volume_data"]);
    track->trackNumber = position;
    return track;
}

bool isBlank(const std::optional<std::string>& text) {
    return !text || text->empty();
}

// A track shows under its album: it keeps its own genre and artist when it has them, and
// always takes the album's pictures and uploader.
void inheritFromAlbum(Item& track, const Item& album) {
    if (isBlank(track.genre)) {
        track.genre = album.genre;
    }
    if (isBlank(track.artist)) {
        track.artist = album.artist;
    }
    track.parentID = album.itemID;
    track.album = album.title;
    track.image = album.image;
    track.originalImage = album.originalImage;
    track.smallImage = album.smallImage;
    track.uploaderName = album.uploaderName;
    track.uploaderId = album.uploaderId;
    track.uploaderSlug = album.uploaderSlug;
    track.uploaderVerified = album.uploaderVerified;
    track.uploaderTastemaker = album.uploaderTastemaker;
    track.uploaderTwitter = album.uploaderTwitter;
}

void readAlbumTracks(Item& album, const JSON& tracks, ObjectContext* shared) {
    std::vector<ItemPtr> result;
    std::int64_t position = 0;
    for (const JSON& element : tracks.arrayValue()) {
        ++position;
        if (ItemPtr track = parseAlbumTrack(element, position, shared)) {
            inheritFromAlbum(*track, album);
            result.push_back(std::move(track));
        }
    }
    album.tracksIDs = joinedIDs(result);
    album.hasTracks = !result.empty();
    album.tracks = std::move(result);
}

// "number from text, or else the integer, or nil".
std::optional<std::int64_t> followersCount(const JSON& value) {
    if (const auto fromText = TBUtil::integerFromText(value.stringValue())) {
        return fromText;
    }
    return value.int64();
}

void readUploader(Item& item, const JSON& uploader) {
    item.uploaderName = uploader["name"].string();
    item.uploaderId = uploader["id"].string();
    item.uploaderSlug = uploader["url_slug"].string();
    // One key, two flags: "yes" is a verified account, "tastemaker" a tastemaker.
    item.uploaderVerified = R::isYes(uploader["verified"]);
    item.uploaderTastemaker = R::isTastemaker(uploader["verified"]);
    item.uploaderTwitter = uploader["twitter"].string();
}

void readRepostAndState(Item& item, const JSON& json) {
    item.repostTimestamp = R::integerFromText(json["repost_ts"]);
    item.status = json["status"].string();
    item.georestricted = json["geo_restricted"].boolValue();
}

ItemPtr parseSong(const JSON& json, bool ignoreGeoRestricted, int depth, ObjectContext* shared) {
    auto item = std::make_shared<Item>();
    const std::string id = json["id"].stringValue();
    if (id.empty()) {
        return nullptr;
    }
    if (ignoreGeoRestricted && json["geo_restricted"].boolValue()) {
        return nullptr;
    }

    item->itemID = id;
    item->type = json["type"].string();
    item->artist = json["artist"].string();
    item->title = json["title"].string();
    item->url = R::cleaned(json["streaming_url"]);
    item->image = R::cleaned(json["image"]);
    item->desc = json["description"].string();
    item->urlSlug = json["url_slug"].string();
    item->featured = json["featuring"].string();
    item->producer = json["producer"].string();
    item->genre = json["genre"].string();
    R::readSizedImages(*item, json);
    const JSON uploader = json["uploader"];
    readUploader(*item, uploader);
    item->uploaderImage = uploader["image"].string();
    item->uploaderFollowersCount = followersCount(uploader["followers_count"]);
    item->buyURL = R::cleaned(json["buy_link"]);
    item->streamOnly = R::isYes(json["stream_only"]);
    item->uploaded = R::dateText(json["released"]);
    item->isSong = item->type == "song";
    item->isAlbum = item->type == "album";
    item->isPlaylist = item->type == "playlist";
    item->videoAd = R::isYes(json["video_ad"]);
    item->amp = json["amp"].boolValue();
    item->ampDuration = R::integerFromText(json["amp_duration"]);

    if (item->itemType() == ItemType::playlist) {
        setItems(*item, parsePlaylistTracks(json["tracks"], id, depth + 1, shared));
    } else if (item->itemType() == ItemType::album) {
        readAlbumTracks(*item, json["tracks"], shared);
    }

    R::readStatistics(*item, json);
    item->volumeData = R::volumeData(json["volume_data"]);
    item->duration = R::integerFromText(json["duration"]);
    const JSON repostArtistName = json["repost_artist"]["name"];
    item->repostArtistName =
        repostArtistName.isString() ? repostArtistName.string() : json["repost"].string();
    readRepostAndState(*item, json);
    return item;
}

}  // namespace

ItemPtr Item::parseItemFrom(const JSON& json, bool ignoreGeoRestricted, ObjectContext* shared) {
    return parseSong(json, ignoreGeoRestricted, 0, shared);
}

ItemPtr Item::parsePlaylistFrom(const JSON& json, ObjectContext* shared) {
    const std::string id = json["id"].stringValue();
    if (id.empty()) {
        return nullptr;
    }
    auto item = std::make_shared<Item>();
    item->isPlaylist = true;  // whatever "type" says
    item->itemID = id;
    item->type = json["type"].string();
    item->title = json["title"].string();
    item->urlSlug = json["url_slug"].string();
    item->featured = json["featuring"].string();
    item->producer = json["producer"].string();
    item->genre = json["genre"].string();

    // The owner of a playlist is under "artist", not "uploader"; the whole uploader block
    // is read from there.
    const JSON owner = json["artist"];
    item->artist = owner["name"].string();
    readUploader(*item, owner);
    item->uploaderImage = owner["image"].string();
    item->uploaderFollowersCount = followersCount(owner["followers_count"]);

    // A playlist has no stream of its own: no "streaming_url", no length, no waveform.
    // Everything else of the song's reading applies.
    item->image = R::cleaned(json["image"]);
    R::readSizedImages(*item, json);
    item->buyURL = R::cleaned(json["buy_link"]);
    item->streamOnly = R::isYes(json["stream_only"]);
    item->uploaded = R::dateText(json["released"]);
    item->videoAd = R::isYes(json["video_ad"]);
    item->amp = json["amp"].boolValue();
    item->ampDuration = R::integerFromText(json["amp_duration"]);
    item->banner = json["image_banner"].string();
    item->playlistTracksCount = json["track_count"].intValue();
    item->privatePlaylist = R::isYes(json["private"]);
    item->created = R::dateText(json["created"]);
    item->lastUpdated = R::dateText(json["updated"]);
    setItems(*item, parsePlaylistTracks(json["tracks"], id, 1, shared));

    R::readStatistics(*item, json);
    item->repostArtistName = json["repost_artist"]["name"].string();
    readRepostAndState(*item, json);
    item->desc = json["description"].string();
    return item;
}

}  // namespace tb
