#pragma once

#include <string>

#include "model/ItemAttributes.h"

namespace tb {

class ErrorReporter;
class ItemDAO;
class NotificationCenter;
class TBCoreDataManager;
class TBMusicDownloadManager;

// Decides what a download request means for the store: which rows, files and artwork an
// item brings and takes along. TBMusicDownloadManager owns the app's one.
class ItemDownloadManager {
  public:
    struct Collaborators {
        TBCoreDataManager& store;
        ItemDAO& dao;
        ErrorReporter& errors;
        NotificationCenter& notifications;
    };

    // `transfers` is the owner, whose artwork this removes.
    ItemDownloadManager(Collaborators with, TBMusicDownloadManager& transfers);

    static ItemDownloadManager& shared();

    // Deletes the item's audio file and artwork; for a playlist or an album, those of each
    // of its tracks too, with their rows (a track shared with another playlist goes as
    // well). Then the item's own row goes (`removeFromDatabase`) or stays with its download
    // flags cleared. Saves; on success posts "download".
    void removeDownloadOf(const ItemPtr& item, bool removeFromDatabase);
    // Only the playlist's artwork and row go; its tracks stay on the device as singles.
    void removePlaylistAndKeepTracks(const ItemPtr& playlist);

    // Sets an album's `tracks` to the stored rows of its `tracksIDs`, in that order; ids
    // without a row drop out. Without `force`, an album that has tracks keeps them.
    void loadAlbumTracksFor(const ItemPtr& album, bool force);
    // Sets a playlist's `items` to the stored rows of its PlaylistTracks, in order.
    void loadPlaylistItemsFor(const ItemPtr& playlist);

    // The documents directory of the store, where the audio and the artwork are.
    std::string documents() const;

  private:
    // Deletes the audio file of the item, if there is one; a failure is recorded.
    void deleteAudioFileOf(const Item& item);
    void removeTrack(const ItemPtr& track);
    // The reporting save with the label "remove"; posts "download" when it worked.
    void saveRemoval();

    Collaborators with_;
    TBMusicDownloadManager& transfers_;
};

}  // namespace tb
