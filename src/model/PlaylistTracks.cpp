#include "model/PlaylistTracks.h"

#include "api/TBDataManager.h"
#include "model/Item.h"
#include "model/TBCoreDataManager.h"
#include "model/store/FetchRequest.h"
#include "model/store/ObjectContext.h"

namespace tb {

namespace {

using Rows = std::vector<std::shared_ptr<PlaylistTracks>>;

constexpr const char* kEntityName = "PlaylistTracks";

ObjectContext* store() {
    return TBDataManager::sharedManager().managedObjectContext().get();
}

FetchRequest requestWhere(Predicate predicate) {
    auto request = FetchRequest::fetchRequestWithEntityName(kEntityName);
    request.predicate = std::move(predicate);
    return request;
}

std::vector<std::shared_ptr<PlaylistTracks>> rowsWhere(ObjectContext& context,
                                                       Predicate predicate) {
    return context.fetch<PlaylistTracks>(requestWhere(std::move(predicate))).value_or(Rows{});
}

void deleteRows(const std::vector<std::shared_ptr<PlaylistTracks>>& rows) {
    for (const auto& row : rows) {
        store()->deleteObject(row);
    }
}

}  // namespace

std::vector<std::shared_ptr<PlaylistTracks>> PlaylistTracks::tracksForPlaylist(
    const std::string& playlistId) {
    auto* context = store();
    if (!context) {
        return {};
    }
    auto request = requestWhere(Predicate::withFormat("playlistId == %@", {playlistId}));
    request.sortDescriptors = {SortDescriptor::sortDescriptorWithKey("number", true)};
    return context->fetch<PlaylistTracks>(request).value_or(Rows{});
}

void PlaylistTracks::savePlaylist(const Item& playlist) {
    auto* context = store();
    if (!context) {
        return;
    }
    const std::string playlistId = playlist.itemID.value_or("");
    deletePlaylist(playlistId);
    std::int64_t number = 0;
    for (const auto& track : playlist.items) {
        auto row = context->insertNewObject<PlaylistTracks>();
        row->playlistId = playlistId;
        row->trackId = track ? track->itemID : std::nullopt;
        row->number = number++;
        TBCoreDataManager::sharedManager().save(nullptr);
    }
}

void PlaylistTracks::saveEntryForPlaylist(const std::string& playlistId,
                                          const std::string& trackId,
                                          std::int64_t number) {
    auto* context = store();
    if (!context) {
        return;
    }
    auto row = context->insertNewObject<PlaylistTracks>();
    row->playlistId = playlistId;
    row->trackId = trackId;
    row->number = number;
    TBCoreDataManager::sharedManager().save(nullptr);
}

std::vector<std::string> PlaylistTracks::playlistsThatContain(const std::string& trackId) {
    auto* context = store();
    if (!context) {
        return {};
    }
    std::vector<std::string> playlistIds;
    for (const auto& row : rowsWhere(*context, Predicate::withFormat("trackId == %@", {trackId}))) {
        playlistIds.push_back(row->playlistId.value_or(""));
    }
    return playlistIds;
}

std::int64_t PlaylistTracks::playlistsTrackCount(const std::string& playlistId) {
    auto* context = store();
    if (!context) {
        return 0;
    }
    auto request = requestWhere(Predicate::withFormat("playlistId == %@", {playlistId}));
    request.includesSubentities = false;
    return context->countForFetchRequest(request).value_or(0);
}

void PlaylistTracks::deletePlaylist(const std::string& playlistId) {
    if (auto* context = store()) {
        deleteRows(rowsWhere(*context, Predicate::withFormat("playlistId == %@", {playlistId})));
    }
}

void PlaylistTracks::deleteTrack(const std::string& trackId, const std::string& fromPlaylistId) {
    if (auto* context = store()) {
        deleteRows(rowsWhere(*context, Predicate::withFormat("playlistId == %@ && trackId == %@",
                                                             {fromPlaylistId, trackId})));
    }
}

}  // namespace tb
