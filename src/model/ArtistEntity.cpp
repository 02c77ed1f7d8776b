#include <utility>

#include "model/Artist.h"
#include "model/store/EntityBuilder.h"

namespace tb {

const EntityDescription& Artist::entityDescription() {
    static const EntityDescription entity = [] {
        EntityBuilder<Artist> artist("Artist");
        artist.attribute("artistId", &Artist::artistId).indexed();
        artist.attribute("name", &Artist::name);
        artist.attribute("urlSlug", &Artist::urlSlug);
        artist.attribute("url", &Artist::url);
        artist.attribute("image", &Artist::image);
        artist.attribute("banner", &Artist::banner);
        artist.attribute("bio", &Artist::bio);
        artist.attribute("hometown", &Artist::hometown);
        artist.attribute("label", &Artist::label);
        artist.attribute("genre", &Artist::genre);
        artist.attribute("facebook", &Artist::facebook);
        artist.attribute("twitter", &Artist::twitter);
        artist.attribute("instagram", &Artist::instagram);
        artist.attribute("youtube", &Artist::youtube);
        artist.attribute("created", &Artist::created, AttributeType::date);
        artist.attribute("admin", &Artist::admin);
        artist.attribute("canComment", &Artist::canComment);
        artist.attribute("followed", &Artist::followed);
        artist.attribute("tastemaker", &Artist::tastemaker);
        artist.attribute("verified", &Artist::verified);
        artist.attribute("favoritesCount", &Artist::favoritesCount);
        artist.attribute("feedCount", &Artist::feedCount);
        artist.attribute("followersCount", &Artist::followersCount);
        artist.attribute("followingCount", &Artist::followingCount);
        artist.attribute("pinnedCount", &Artist::pinnedCount);
        artist.attribute("playlistsCount", &Artist::playlistsCount);
        artist.attribute("playsCount", &Artist::playsCount);
        artist.attribute("reupsCount", &Artist::reupsCount);
        artist.attribute("uploadsCount", &Artist::uploadsCount);
        return std::move(artist).build();
    }();
    return entity;
}

}  // namespace tb
