#pragma once

#include <functional>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "tunebrook-service/state/AccountRow.h"
#include "tunebrook-service/state/ArtistCounts.h"
#include "tunebrook-service/state/MusicRow.h"
#include "tunebrook-service/state/PlaylistRow.h"

namespace tb::service {

class MediaUrlSigner;

// The JSON of songs, albums, album tracks, playlists and accounts, with the keys the client
// reads. Like the real service's answers, the same kind of value doesn't always come in the
// same form: ids and counters are sometimes numbers and sometimes text, some items have no
// "image_base", some links come with escaped slashes. Which form an item gets depends only
// on its id, so answers are stable.
class ItemJson {
  public:
    ItemJson(const MediaUrlSigner& urls, std::function<double()> now)
        : urls_(urls), now_(std::move(now)) {}

    nlohmann::json song(const MusicRow& row) const;
    nlohmann::json album(const MusicRow& row, const std::vector<MusicRow>& tracks) const;
    nlohmann::json albumTrack(const MusicRow& row, int64_t albumId) const;
    // Song or album, by the row's type.
    nlohmann::json music(const MusicRow& row, const std::vector<MusicRow>& tracks) const;
    nlohmann::json playlist(const PlaylistRow& row, const std::vector<MusicRow>* tracks) const;
    nlohmann::json artist(const AccountRow& row,
                          const ArtistCounts& counts,
                          const nlohmann::json& pinned) const;
    nlohmann::json uploader(const AccountRow& row) const;
    // Adds "rankings" under "stats" (single-item answers only).
    static void addRankings(nlohmann::json& item, const int64_t ranks[5]);

    // A number, or the same number as text, by the id's parity.
    static nlohmann::json counter(int64_t value, int64_t id);
    static nlohmann::json id(int64_t value);

  private:
    nlohmann::json common(const MusicRow& row) const;
    nlohmann::json stats(const MusicRow& row) const;
    std::string streamUrl(const MusicRow& row) const;

    const MediaUrlSigner& urls_;
    std::function<double()> now_;
};

}  // namespace tb::service
