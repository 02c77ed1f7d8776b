#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/store/StoreTypes.h"

namespace tb {

struct Item;
using ItemPtr = std::shared_ptr<Item>;

// The stored attributes that the `Item` entity and its bookmark mirror (`BookmarkItem`) have
// in common, under the entity's own names. Counters of the service arrive as text and stay
// text. Booleans default to false, integers to 0, all others to nil.
struct ItemAttributes {
    std::optional<std::string> itemID;  // never empty on a parsed item
    std::optional<std::string> type;    // "song", "album" or "playlist", as received
    bool isSong = false;
    bool isAlbum = false;
    bool isPlaylist = false;
    bool isAlbumTrack = false;
    bool isPlaylistTrack = false;
    bool isUserPlaylist = false;
    std::optional<std::string> parentID;
    std::optional<std::string> album;     // title of the parent album
    std::optional<std::string> playlist;  // title of the parent playlist
    std::optional<std::string> title;
    std::optional<std::string> artist;
    std::optional<std::string> featured;
    std::optional<std::string> producer;
    std::optional<std::string> genre;
    std::optional<std::string> desc;
    std::optional<std::string> url;
    std::optional<std::string> urlSlug;
    std::optional<std::string> image;
    std::optional<std::string> originalImage;
    std::optional<std::string> smallImage;
    std::optional<std::string> songImage;
    std::optional<std::string> playlistImage;
    std::optional<std::string> banner;
    std::optional<std::string> buyURL;
    std::optional<std::string> downloadURL;
    bool streamOnly = false;
    bool videoAd = false;
    bool amp = false;
    std::int64_t ampDuration = 0;
    std::int64_t duration = 0;
    std::int64_t trackNumber = 0;
    std::optional<std::string> uploaded;
    std::optional<std::string> created;
    std::optional<std::string> lastUpdated;
    std::optional<std::string> uploaderName;
    std::optional<std::string> uploaderId;
    std::optional<std::string> uploaderSlug;
    std::optional<std::string> uploaderTwitter;
    std::optional<std::string> uploaderImage;
    bool uploaderVerified = false;
    bool uploaderTastemaker = false;
    bool uploaderFollowed = false;
    std::optional<std::int64_t> uploaderFollowersCount;
    std::vector<ItemPtr> tracks;  // album tracks, kept with tracksIDs
    std::optional<std::string> tracksIDs;
    bool hasTracks = false;
    std::vector<ItemPtr> items;  // playlist tracks, kept with itemsIDs
    std::optional<std::string> itemsIDs;
    bool hasItems = false;
    std::int64_t playlistTracksCount = 0;
    bool privatePlaylist = false;
    std::optional<std::string> plays;
    std::optional<std::string> favorites;
    std::optional<std::string> reposts;
    std::optional<std::string> playlists;
    std::optional<std::string> rankDaily;
    std::optional<std::string> rankWeekly;
    std::optional<std::string> rankMonthly;
    std::optional<std::string> rankYearly;
    std::optional<std::string> rankAllTime;
    std::optional<std::vector<std::int64_t>> volumeData;
    std::int64_t commentsCount = 0;
    std::optional<std::string> repostArtistName;
    std::int64_t repostTimestamp = 0;
    std::optional<std::string> status;
    bool favorited = false;
    bool reposted = false;
    std::int64_t favoriteStatus = 0;
    std::int64_t repostStatus = 0;
    std::int64_t addToPlaylistStatus = 0;
    bool cached = false;
    bool downloaded = false;
    bool downloadCompleted = false;
    bool synced = false;
    bool albumTrackDownloadedAsSingle = false;
    std::optional<Date> downloadDate;
    std::int64_t offlineToastShown = 0;
    std::optional<Data> mixpanelSourceJSON;
};

}  // namespace tb
