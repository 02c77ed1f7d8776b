#include "model/ItemPredicates.h"

namespace tb {

ItemPredicates::ItemPredicates()
    : cachedItems(Predicate::withFormat(
          "(isSong == 1 || isAlbum == 1 || albumTrackDownloadedAsSingle == 1) || (cached == 1)")),
      unsyncedDownloads(Predicate::withFormat(
          "(downloaded == 1) && (isSong == 1 || isAlbum == 1 || albumTrackDownloadedAsSingle == "
          "1) && (cached == NULL || cached == 0) && (synced == NULL || synced == 0)")),
      offlineIds(Predicate::withFormat(
          "(downloaded == 1 || downloadCompleted == 1) && (cached == NULL || cached == 0) && "
          "(isPlaylist == 0 || isPlaylist == NULL)")),
      offlineAll(Predicate::withFormat(
          "(downloaded == 1) && (isSong == 1 || isAlbum == 1 || albumTrackDownloadedAsSingle == "
          "1) && (cached == NULL || cached == 0)")),
      offlineSongs(Predicate::withFormat(
          "(downloaded == 1) && (isSong == 1 || albumTrackDownloadedAsSingle == 1) && (cached "
          "== NULL || cached == 0)")),
      offlineAlbums(Predicate::withFormat(
          "(downloaded == 1) && (isAlbum == 1) && (cached == NULL || cached == 0)")),
      offlinePlaylists(Predicate::withFormat(
          "(downloaded == 1) && (isPlaylist == 1) && (cached == NULL || cached == 0)")),
      allDownloadsCompleted(
          Predicate::withFormat("(downloaded == 1) && (downloadCompleted == 1)")) {}

}  // namespace tb
