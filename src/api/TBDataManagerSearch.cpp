// Search of TBDataManager.

#include <nlohmann/json.hpp>

#include "api/TBCataloguePaths.h"
#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "api/TBSearchGrouping.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/JSON.h"

namespace tb {

namespace {

using json = nlohmann::json;

constexpr const char* kArtistsCategory = "artists";

}  // namespace

// ---- Search --------------------------------------------------------------------------

void TBDataManager::searchAutosuggest(const std::string& query, TBJSONSuccess success) {
    answerForService("GET", "search_autosuggest", json{{"q", query}},
                     success ? [success](const JSON& response) { success(response["results"]); }
                             : TBJSONSuccess(),
                     nullptr);
}

NextPageData TBDataManager::search(const std::string& query,
                                   const std::string& category,
                                   const std::string& sort,
                                   bool verified,
                                   const std::string& genre,
                                   int page,
                                   TBSearchSuccess success,
                                   TBFailureBlock failure) {
    json parameters{{"q", query},
                    {"show", category},
                    {"sort", sort},
                    {"page", TBCataloguePaths::pageText(page)}};
    if (verified) {
        parameters["verified"] = "on";
    }
    if (!genre.empty()) {
        parameters["genre"] = genre;
    }
    if (category == kArtistsCategory) {
        TBArtistsSuccess artists;
        if (success) {
            artists = [success](const std::vector<ArtistPtr>& found,
                                const std::optional<std::string>&, const JSON&) {
                success(std::vector<TBSearchRow>(found.begin(), found.end()), false);
            };
        }
        return artistsForService("search", parameters, std::move(artists), std::move(failure));
    }
    TBItemsSuccess music;
    if (success) {
        music = [success, category](const std::vector<ItemPtr>& items,
                                    const std::optional<std::string>&, const JSON& response) {
            auto grouped = TBSearchGrouping::group(response, category, items);
            success(grouped.rows, grouped.related);
        };
    }
    return fullDataForService("search", parameters, true, std::move(music), std::move(failure));
}

NextPageData TBDataManager::searchUserAccount(const std::string& query,
                                              const std::string& category,
                                              int page,
                                              TBItemsSuccess success,
                                              TBFailureBlock failure) {
    return dataForService(
        "user/search",
        json{{"q", query}, {"show", category}, {"page", TBCataloguePaths::pageText(page)}}, true,
        std::move(success), std::move(failure));
}

}  // namespace tb
