#pragma once

#include "model/ItemAttributes.h"
#include "model/store/EntityBuilder.h"

namespace tb {

// The attribute table shared by `Item` and its bookmark mirror `BookmarkItem`: every field
// of ItemAttributes under its own name, in declaration order.
template <class T>
void describeItemAttributes(EntityBuilder<T>& entity) {
    static_assert(std::is_base_of_v<ItemAttributes, T>);
    entity.attribute("itemID", &T::itemID);
    entity.attribute("type", &T::type);
    entity.attribute("isSong", &T::isSong);
    entity.attribute("isAlbum", &T::isAlbum);
    entity.attribute("isPlaylist", &T::isPlaylist);
    entity.attribute("isAlbumTrack", &T::isAlbumTrack);
    entity.attribute("isPlaylistTrack", &T::isPlaylistTrack);
    entity.attribute("isUserPlaylist", &T::isUserPlaylist);
    entity.attribute("parentID", &T::parentID);
    entity.attribute("album", &T::album);
    entity.attribute("playlist", &T::playlist);
    entity.attribute("title", &T::title);
    entity.attribute("artist", &T::artist);
    entity.attribute("featured", &T::featured);
    entity.attribute("producer", &T::producer);
    entity.attribute("genre", &T::genre);
    entity.attribute("desc", &T::desc);
    entity.attribute("url", &T::url);
    entity.attribute("urlSlug", &T::urlSlug);
    entity.attribute("image", &T::image);
    entity.attribute("originalImage", &T::originalImage);
    entity.attribute("smallImage", &T::smallImage);
    entity.attribute("songImage", &T::songImage);
    entity.attribute("playlistImage", &T::playlistImage);
    entity.attribute("banner", &T::banner);
    entity.attribute("buyURL", &T::buyURL);
    entity.attribute("downloadURL", &T::downloadURL);
    entity.attribute("streamOnly", &T::streamOnly);
    entity.attribute("videoAd", &T::videoAd);
    entity.attribute("amp", &T::amp);
    entity.attribute("ampDuration", &T::ampDuration);
    entity.attribute("duration", &T::duration);
    entity.attribute("trackNumber", &T::trackNumber);
    entity.attribute("uploaded", &T::uploaded);
    entity.attribute("created", &T::created);
    entity.attribute("lastUpdated", &T::lastUpdated);
    entity.attribute("uploaderName", &T::uploaderName);
    entity.attribute("uploaderId", &T::uploaderId);
    entity.attribute("uploaderSlug", &T::uploaderSlug);
    entity.attribute("uploaderTwitter", &T::uploaderTwitter);
    entity.attribute("uploaderImage", &T::uploaderImage);
    entity.attribute("uploaderVerified", &T::uploaderVerified);
    entity.attribute("uploaderTastemaker", &T::uploaderTastemaker);
    entity.attribute("uploaderFollowed", &T::uploaderFollowed);
    entity.attribute("uploaderFollowersCount", &T::uploaderFollowersCount);
    entity.attribute("tracks", &T::tracks);
    entity.attribute("tracksIDs", &T::tracksIDs);
    entity.attribute("hasTracks", &T::hasTracks);
    entity.attribute("items", &T::items);
    entity.attribute("itemsIDs", &T::itemsIDs);
    entity.attribute("hasItems", &T::hasItems);
    entity.attribute("playlistTracksCount", &T::playlistTracksCount);
    entity.attribute("privatePlaylist", &T::privatePlaylist);
    entity.attribute("plays", &T::plays);
    entity.attribute("favorites", &T::favorites);
    entity.attribute("reposts", &T::reposts);
    entity.attribute("playlists", &T::playlists);
    entity.attribute("rankDaily", &T::rankDaily);
    entity.attribute("rankWeekly", &T::rankWeekly);
    entity.attribute("rankMonthly", &T::rankMonthly);
    entity.attribute("rankYearly", &T::rankYearly);
    entity.attribute("rankAllTime", &T::rankAllTime);
    entity.attribute("volumeData", &T::volumeData);
    entity.attribute("commentsCount", &T::commentsCount);
    entity.attribute("repostArtistName", &T::repostArtistName);
    entity.attribute("repostTimestamp", &T::repostTimestamp);
    entity.attribute("status", &T::status);
    entity.attribute("favorited", &T::favorited);
    entity.attribute("reposted", &T::reposted);
    entity.attribute("favoriteStatus", &T::favoriteStatus);
    entity.attribute("repostStatus", &T::repostStatus);
    entity.attribute("addToPlaylistStatus", &T::addToPlaylistStatus);
    entity.attribute("cached", &T::cached);
    entity.attribute("downloaded", &T::downloaded);
    entity.attribute("downloadCompleted", &T::downloadCompleted);
    entity.attribute("synced", &T::synced);
    entity.attribute("albumTrackDownloadedAsSingle", &T::albumTrackDownloadedAsSingle);
    entity.attribute("downloadDate", &T::downloadDate, AttributeType::date);
    entity.attribute("offlineToastShown", &T::offlineToastShown);
    entity.attribute("mixpanelSourceJSON", &T::mixpanelSourceJSON);
}

}  // namespace tb
