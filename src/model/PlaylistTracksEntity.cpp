#include <utility>

#include "model/PlaylistTracks.h"
#include "model/store/EntityBuilder.h"

namespace tb {

const EntityDescription& PlaylistTracks::entityDescription() {
    static const EntityDescription entity = [] {
        EntityBuilder<PlaylistTracks> tracks("PlaylistTracks");
        tracks.attribute("playlistId", &PlaylistTracks::playlistId).indexed();
        tracks.attribute("trackId", &PlaylistTracks::trackId).indexed();
        tracks.attribute("number", &PlaylistTracks::number);
        return std::move(tracks).build();
    }();
    return entity;
}

}  // namespace tb
