#include "api/TBSearchGrouping.h"

#include "model/Artist.h"
#include "model/Item.h"
#include "platform/JSON.h"

namespace tb {

namespace {

constexpr const char* kMusicCategory = "music";
constexpr const char* kPlaylistsCategory = "playlists";

void addVerifiedArtist(const JSON& value, std::vector<TBSearchRow>& rows) {
    if (!value.isDictionary()) {
        return;
    }
    if (ArtistPtr artist = Artist::parseFrom(value)) {
        artist->verifiedSearchResult = true;
        rows.emplace_back(std::move(artist));
    }
}

void addVerifiedPlaylist(const JSON& value, std::vector<TBSearchRow>& rows) {
    if (!value.isDictionary()) {
        return;
    }
    if (ItemPtr playlist = Item::parsePlaylistFrom(value)) {
        playlist->verifiedSearchResult = true;
        rows.emplace_back(std::move(playlist));
    }
}

}  // namespace

TBSearchGrouping::Result TBSearchGrouping::group(const JSON& response,
                                                 const std::string& category,
                                                 const std::vector<ItemPtr>& results) {
    Result result;
    const JSON related = response["related"];
    result.related = category == kMusicCategory && related.isNumber() && related.boolValue();
    if (!response["results"].isArray()) {
        return result;
    }
    if (category != kPlaylistsCategory) {
        addVerifiedArtist(response["tastemaker_artist"], result.rows);
        addVerifiedArtist(response["verified_artist"], result.rows);
        addVerifiedPlaylist(response["tastemaker_playlist"], result.rows);
        addVerifiedPlaylist(response["verified_playlist"], result.rows);
    }
    result.rows.insert(result.rows.end(), results.begin(), results.end());
    return result;
}

}  // namespace tb
