#include "tunebrook-service/catalogue/CatalogueView.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/catalogue/ItemJson.h"
#include "tunebrook-service/catalogue/Vocabulary.h"
#include "tunebrook-service/state/AccountStore.h"
#include "tunebrook-service/state/LibraryStore.h"
#include "tunebrook-service/state/MusicStore.h"
#include "tunebrook-service/state/PlaylistStore.h"

namespace tb::service {

using nlohmann::json;

json CatalogueView::music(const MusicRow& row) const {
    if (row.type == "album") {
        return json_.album(row, music_.albumTracks(row.id));
    }
    return json_.song(row);
}

json CatalogueView::musicDetail(const MusicRow& row) const {
    json item = music(row);
    int64_t ranks[5];
    const auto& periods = Vocabulary::periods();
    for (size_t i = 0; i < 5; ++i) {
        ranks[i] = music_.rank(row, periods[i]);
    }
    ItemJson::addRankings(item, ranks);
    return item;
}

json CatalogueView::musicList(const std::vector<MusicRow>& rows) const {
    json list = json::array();
    for (const auto& row : rows) {
        list.push_back(music(row));
    }
    return list;
}

json CatalogueView::playlist(const PlaylistRow& row, bool withTracks) const {
    if (!withTracks) {
        return json_.playlist(row, nullptr);
    }
    auto tracks = playlists_.tracks(row.id);
    return json_.playlist(row, &tracks);
}

json CatalogueView::playlistList(const std::vector<PlaylistRow>& rows) const {
    json list = json::array();
    for (const auto& row : rows) {
        list.push_back(playlist(row, false));
    }
    return list;
}

json CatalogueView::artist(const AccountRow& row, bool self) const {
    return json_.artist(row, accounts_.counts(row.id, self),
                        pinned(row.id, self ? std::optional<int64_t>(row.id) : std::nullopt));
}

json CatalogueView::artistList(const std::vector<AccountRow>& rows) const {
    json list = json::array();
    for (const auto& row : rows) {
        list.push_back(json_.artist(row, accounts_.counts(row.id, false), json::array()));
    }
    return list;
}

json CatalogueView::pinned(int64_t accountId, std::optional<int64_t> viewer) const {
    json list = json::array();
    for (const auto& entity : library_.pinned(accountId)) {
        if (entity.kind == "playlist") {
            auto row = playlists_.byId(entity.id);
            if (row && visible(*row, viewer)) {
                list.push_back(playlist(*row, false));
            }
        } else if (auto row = music_.byId(entity.id); row && !row->takenDown()) {
            list.push_back(music(*row));
        }
    }
    return list;
}

}  // namespace tb::service
