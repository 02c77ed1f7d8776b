#include "model/PlaylistTracks.h"

#include "model/Item.h"
#include "model/TBCoreDataManager.h"
#include "model/store/FetchRequest.h"
#include "model/store/ObjectContext.h"

namespace tb {

namespace {

using Rows = std::vector<std::shared_ptr<PlaylistTracks>>;

constexpr const char* kEntityName = "PlaylistTracks";

FetchRequest requestWhere(Predicate predicate) {
    auto request = FetchRequest::fetchRequestWithEntityName(kEntityName);
    request.predicate = std::move(predicate);
    return request;
}

std::vector<std::shared_ptr<PlaylistTracks>> rowsWhere(ObjectContext& context,
                                                       Predicate predicate) {
    return context.fetch<PlaylistTracks>(requestWhere(std::move(predicate))).value_or(Rows{});
}

void deleteRows(ObjectContext& context, const std::vector<std::shared_ptr<PlaylistTracks>>& rows) {
    for (const auto& row : rows) {
        context.deleteObject(row);
    }
}

}  // namespace

std::vector<std::shared_ptr<PlaylistTracks>> PlaylistTracks::tracksForPlaylist(
    TBCoreDataManager& store,
    const std::string& playlistId) {
    auto* context = store.context();
    if (!context) {
        return {};
    }
    auto request = requestWhere(Predicate::withFormat("playlistId == %@", {playlistId}));
    request.sortDescriptors = {SortDescriptor::sortDescriptorWithKey("number", true)};
    return context->fetch<PlaylistTracks>(request).value_or(Rows{});
}

void PlaylistTracks::savePlaylist(TBCoreDataManager& store, const Item& playlist) {
    auto* context = store.context();
    if (!context) {
        return;
    }
    const std::string playlistId = playlist.itemID.value_or("");
    deletePlaylist(store, playlistId);
    std::int64_t number = 0;
    for (const auto& track : playlist.items) {
        auto row = context->insertNewObject<PlaylistTracks>();
        row->playlistId = playlistId;
        row->trackId = track ? track->itemID : std::nullopt;
        row->number = number++;
        store.save(nullptr);
    }
}

void PlaylistTracks::saveEntryForPlaylist(TBCoreDataManager& store,
                                          const std::string& playlistId,
                                          const std::string& trackId,
                                          std::int64_t number) {
    auto* context = store.context();
    if (!context) {
        return;
    }
    auto row = context->insertNewObject<PlaylistTracks>();
    row->playlistId = playlistId;
    row->trackId = trackId;
    row->number = number;
    store.save(nullptr);
}

std::vector<std::string> PlaylistTracks::playlistsThatContain(TBCoreDataManager& store,
                                                              const std::string& trackId) {
    auto* context = store.context();
    if (!context) {
        return {};
    }
    std::vector<std::string> playlistIds;
    for (const auto& row : rowsWhere(*context, Predicate::withFormat("trackId == %@", {trackId}))) {
        playlistIds.push_back(row->playlistId.value_or(""));
    }
    return playlistIds;
}

std::int64_t PlaylistTracks::playlistsTrackCount(TBCoreDataManager& store,
                                                 const std::string& playlistId) {
    auto* context = store.context();
    if (!context) {
        return 0;
    }
    auto request = requestWhere(Predicate::withFormat("playlistId == %@", {playlistId}));
    request.includesSubentities = false;
    return context->countForFetchRequest(request).value_or(0);
}

void PlaylistTracks::deletePlaylist(TBCoreDataManager& store, const std::string& playlistId) {
    if (auto* context = store.context()) {
        deleteRows(*context,
                   rowsWhere(*context, Predicate::withFormat("playlistId == %@", {playlistId})));
    }
}

void PlaylistTracks::deleteTrack(TBCoreDataManager& store,
                                 const std::string& trackId,
                                 const std::string& fromPlaylistId) {
    if (auto* context = store.context()) {
        deleteRows(*context,
                   rowsWhere(*context, Predicate::withFormat("playlistId == %@ && trackId == %@",
                                                             {fromPlaylistId, trackId})));
    }
}

}  // namespace tb
