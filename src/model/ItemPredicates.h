#pragma once

#include "model/store/Predicate.h"

namespace tb {

// The fixed predicates of the offline lists, built once and never changed. ItemDAO holds
// one set and hands them out by name.
class ItemPredicates {
  public:
    ItemPredicates();

    // Songs, albums and single album tracks, and anything the stream cache keeps.
    const Predicate cachedItems;
    // Downloads the service has not been told of (music/status).
    const Predicate unsyncedDownloads;
    // Everything on the device but playlists and the stream cache.
    const Predicate offlineIds;
    // The offline filters: all, songs, albums; and the offline playlists.
    const Predicate offlineAll;
    const Predicate offlineSongs;
    const Predicate offlineAlbums;
    const Predicate offlinePlaylists;
    // The listener's count of finished downloads.
    const Predicate allDownloadsCompleted;
};

}  // namespace tb
