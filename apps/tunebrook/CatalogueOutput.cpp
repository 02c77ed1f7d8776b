#include "CatalogueOutput.h"

#include <ostream>

#include <nlohmann/json.hpp>

#include "api/TBFailureInfo.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBFeaturedSpot.h"
#include "model/TBUtil.h"
#include "model/store/RecordJson.h"
#include "platform/JSON.h"

namespace tb {

namespace {

using json = nlohmann::json;

const char* itemTypeName(ItemType type) {
    switch (type) {
        case ItemType::song:
            return "song";
        case ItemType::album:
            return "album";
        case ItemType::playlist:
            return "playlist";
        case ItemType::albumTrack:
            return "albumTrack";
        case ItemType::playlistTrack:
            return "playlistTrack";
        case ItemType::userPlaylist:
            return "userPlaylist";
        case ItemType::unknown:
            break;
    }
    return "unknown";
}

std::string text(const std::optional<std::string>& value, const char* fallback = "?") {
    return value && !value->empty() ? *value : fallback;
}

// "12.3K plays" from the service's count text; nothing when the count isn't a number.
std::string countText(const std::optional<std::string>& count, const char* noun) {
    const auto value = count ? TBUtil::integerFromText(*count) : std::nullopt;
    return value ? TBUtil::formatShortStatNumber(*value) + " " + noun : std::string();
}

json spotJSON(const TBFeaturedSpot& spot) {
    return {{"type", spot.type ? json(*spot.type) : json()},
            {"prettyType", spot.prettyType()},
            {"item", spot.item ? CatalogueOutput::itemJSON(*spot.item) : json()},
            {"artist", spot.artist ? CatalogueOutput::artistJSON(*spot.artist) : json()}};
}

}  // namespace

CatalogueOutput::CatalogueOutput(std::ostream& out, bool json) : out_(out), json_(json) {}

json CatalogueOutput::itemJSON(const Item& item) {
    json record = RecordJson::object(item);
    record["verifiedSearchResult"] = item.verifiedSearchResult;
    record["itemType"] = itemTypeName(item.itemType());
    return record;
}

json CatalogueOutput::artistJSON(const Artist& artist) {
    json record = RecordJson::object(artist);
    record["verifiedSearchResult"] = artist.verifiedSearchResult;
    return record;
}

void CatalogueOutput::items(const std::vector<ItemPtr>& items,
                            const std::optional<std::string>& pagingToken,
                            std::optional<int> nextPage) {
    if (json_) {
        json list = json::array();
        for (const auto& item : items) {
            list.push_back(itemJSON(*item));
        }
        print({{"items", std::move(list)},
               {"pagingToken", pagingToken ? json(*pagingToken) : json()},
               {"nextPage", nextPage ? json(*nextPage) : json()}});
        return;
    }
    if (items.empty()) {
        out_ << "Nothing here." << std::endl;
        return;
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        itemLine(i + 1, *items[i]);
    }
    if (pagingToken) {
        out_ << "More: paging token " << *pagingToken << std::endl;
    } else if (nextPage) {
        // Numbered pages don't say whether another follows; the next one may be empty.
        out_ << "Next page: --page " << *nextPage << std::endl;
    }
}

void CatalogueOutput::item(const ItemPtr& item) {
    if (json_) {
        print({{"item", item ? itemJSON(*item) : json()}});
        return;
    }
    if (!item) {
        out_ << "The service's answer held no item." << std::endl;
        return;
    }
    itemLine(0, *item);
    const auto& children = item->isAlbum ? item->tracks : item->items;
    for (std::size_t i = 0; i < children.size(); ++i) {
        out_ << "   ";
        itemLine(i + 1, *children[i]);
    }
}

void CatalogueOutput::artist(const ArtistPtr& artist) {
    if (json_) {
        print({{"artist", artist ? artistJSON(*artist) : json()}});
        return;
    }
    if (!artist) {
        out_ << "The service's answer held no account." << std::endl;
        return;
    }
    artistLine(0, *artist);
    out_ << "   " << artist->uploadsCount << " uploads, " << artist->playlistsCount
         << " playlists, " << artist->favoritesCount << " favorites, " << artist->followingCount
         << " following" << std::endl;
    if (artist->bio && !artist->bio->empty()) {
        out_ << "   " << *artist->bio << std::endl;
    }
}

void CatalogueOutput::artists(const std::vector<ArtistPtr>& artists,
                              const std::optional<std::string>& pagingToken) {
    if (json_) {
        json list = json::array();
        for (const auto& artist : artists) {
            list.push_back(artistJSON(*artist));
        }
        print({{"artists", std::move(list)},
               {"pagingToken", pagingToken ? json(*pagingToken) : json()}});
        return;
    }
    for (std::size_t i = 0; i < artists.size(); ++i) {
        artistLine(i + 1, *artists[i]);
    }
}

void CatalogueOutput::searchRows(const std::vector<TBSearchRow>& rows, bool related) {
    if (json_) {
        json list = json::array();
        for (const auto& row : rows) {
            if (const auto* item = std::get_if<ItemPtr>(&row)) {
                list.push_back({{"item", itemJSON(**item)}});
            } else {
                list.push_back({{"artist", artistJSON(*std::get<ArtistPtr>(row))}});
            }
        }
        print({{"related", related}, {"results", std::move(list)}});
        return;
    }
    if (rows.empty()) {
        out_ << "No results." << std::endl;
        return;
    }
    if (related) {
        out_ << "No exact results; related music:" << std::endl;
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (const auto* item = std::get_if<ItemPtr>(&rows[i])) {
            itemLine(i + 1, **item);
        } else {
            artistLine(i + 1, *std::get<ArtistPtr>(rows[i]));
        }
    }
}

void CatalogueOutput::featured(const std::vector<TBFeaturedSpot>& spots,
                               const std::optional<TBFeaturedSpot>& pick) {
    if (json_) {
        json list = json::array();
        for (const auto& spot : spots) {
            list.push_back(spotJSON(spot));
        }
        print({{"spots", std::move(list)}, {"pick", pick ? spotJSON(*pick) : json()}});
        return;
    }
    for (std::size_t i = 0; i < spots.size(); ++i) {
        const auto& spot = spots[i];
        out_ << (pick && pick->isEqual(spot) ? " * " : "   ") << spot.prettyType() << ": ";
        if (spot.item) {
            out_ << text(spot.item->artist) << " – " << text(spot.item->title) << "  (id "
                 << text(spot.item->itemID) << ")";
        } else if (spot.artist) {
            out_ << text(spot.artist->name) << " (@" << text(spot.artist->urlSlug) << ")";
        }
        out_ << std::endl;
    }
    if (pick) {
        out_ << "* the spot the app shows now" << std::endl;
    }
}

std::string CatalogueOutput::failureText(const TBFailureInfo& failure) {
    if (failure.isEmpty) {
        return "the service's answer could not be read";
    }
    // A 2xx answer that failed all the same (a body that could not be read) is told by its
    // error: "the service answered 200" would read as if nothing went wrong.
    const bool statusFailed =
        failure.statusCode != 0 && (failure.statusCode < 200 || failure.statusCode > 299);
    std::string line;
    if (statusFailed || (failure.statusCode != 0 && !failure.error)) {
        line = "the service answered " + std::to_string(failure.statusCode);
        const JSON body = failure.responseJSON();
        const auto message =
            body["message"].string() ? body["message"].string() : body["description"].string();
        if (message && !message->empty()) {
            line += ": " + *message;
        }
        return line;
    }
    if (failure.error) {
        return failure.error->message.empty()
                   ? failure.error->domain + " error " + std::to_string(failure.error->code)
                   : failure.error->message;
    }
    return "the request failed";
}

void CatalogueOutput::itemLine(std::size_t number, const Item& item) {
    if (number > 0) {
        out_ << (number < 10 ? " " : "") << number << ". ";
    }
    out_ << text(item.artist) << " – " << text(item.title) << "  ["
         << itemTypeName(item.itemType());
    if (item.duration > 0) {
        out_ << ", " << TBUtil::timeStringFromSeconds(static_cast<double>(item.duration));
    }
    if (const auto plays = countText(item.plays, "plays"); !plays.empty()) {
        out_ << ", " << plays;
    }
    out_ << "]  id " << text(item.itemID);
    if (item.uploaderVerified || item.verifiedSearchResult) {
        out_ << "  verified";
    }
    if (item.georestricted) {
        out_ << "  not in your country";
    }
    if (item.isTakenDown()) {
        out_ << "  taken down";
    }
    out_ << std::endl;
}

void CatalogueOutput::artistLine(std::size_t number, const Artist& artist) {
    if (number > 0) {
        out_ << (number < 10 ? " " : "") << number << ". ";
    }
    out_ << text(artist.name) << " (@" << text(artist.urlSlug) << ")  "
         << TBUtil::formatShortStatNumber(artist.followersCount) << " followers";
    if (artist.verified) {
        out_ << "  verified";
    }
    if (artist.tastemaker) {
        out_ << "  tastemaker";
    }
    out_ << std::endl;
}

void CatalogueOutput::print(const json& document) {
    out_ << document.dump(2, ' ', false, json::error_handler_t::replace) << std::endl;
}

}  // namespace tb
