// The catalogue client half of TBDataManager: the environment, the generic calls and the
// service's catalogue operations.

#include <nlohmann/json.hpp>

#include "api/AFXAuthClient.h"
#include "api/TBCatalogueRequester.h"
#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "api/TBSearchGrouping.h"
#include "api/TBServiceEnvironment.h"
#include "api/TBSessionGateHolder.h"
#include "api/TBXAuthClientManager.h"
#include "api/XAuthEncoding.h"
#include "app/AppContext.h"
#include "core/TBConstants.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBFeaturedSpot.h"
#include "model/TBNotification.h"
#include "platform/JSON.h"
#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"
#include "platform/RandomSource.h"

namespace tb {

namespace {

using json = nlohmann::json;
using Answer = TBCatalogueRequester::Answer;

constexpr const char* kAllGenres = "all";
constexpr const char* kPlaylistType = "playlist";
constexpr const char* kArtistsCategory = "artists";
constexpr const char* kTrendingTag = "Trending";
constexpr const char* kDownloadsPageSize = "50";
constexpr const char* kFieldErrorsJoin = ".  ";

// "page" is the caller's 0-based page plus one, in decimal.
std::string pageText(int page) {
    return std::to_string(page + 1);
}

// One segment of a service path made from an id, slug or tag. Only unreserved characters
// stay as they are, and "." or ".." is escaped whole, so that no id can step out of its
// place in the path.
std::string pathSegment(std::string_view text) {
    if (text == ".") {
        return "%2E";
    }
    if (text == "..") {
        return "%2E%2E";
    }
    return strictEscape(text);
}

// An identifier that may hold slashes ("uploader-slug/album-slug"): each part a segment.
std::string pathOf(std::string_view text) {
    std::string path;
    for (std::size_t start = 0;;) {
        const auto slash = text.find('/', start);
        path += pathSegment(text.substr(start, slash - start));
        if (slash == std::string_view::npos) {
            return path;
        }
        path += '/';
        start = slash + 1;
    }
}

bool isAllGenres(const std::string& genre) {
    return genre.empty() || genre == kAllGenres;
}

// "music/<genre>/<list>", or "music/<list>" for all genres.
std::string genreListPath(const std::string& genre, const std::string& list) {
    return "music/" + (isAllGenres(genre) ? "" : pathSegment(genre) + "/") + list;
}

// "music/<kind>/<id>", or "music/<uploader>/<slug>" for an identifier with a slash.
std::string musicInfoPath(const std::string& kind, const std::string& identifier) {
    if (identifier.find('/') != std::string::npos) {
        return "music/" + pathOf(identifier);
    }
    return "music/" + kind + "/" + pathSegment(identifier);
}

json pageParameters(int page) {
    return json{{"page", pageText(page)}};
}

void addPagingToken(json& parameters, const std::optional<std::string>& pagingToken) {
    if (pagingToken && !pagingToken->empty()) {
        parameters["paging_token"] = *pagingToken;
    }
}

json pagingTokenParameters(const std::optional<std::string>& pagingToken) {
    json parameters = json::object();
    addPagingToken(parameters, pagingToken);
    return parameters;
}

// The mapping of a generic call's answer: a dictionary whose "results" is an array gives
// the mapped rows, the paging token and the answer; any other answer is handed over whole.
template <typename Row, typename Map>
void deliverList(
    const json& object,
    const Map& map,
    const std::function<
        void(const std::vector<Row>&, const std::optional<std::string>&, const JSON&)>& success,
    const TBFailureBlock& failure) {
    if (object.is_null()) {
        if (failure) {
            failure(TBFailureInfo::emptyDictionary());
        }
        return;
    }
    const JSON response{json(object)};
    const JSON results = response["results"];
    if (response.isDictionary() && results.isArray()) {
        success(map(results), response["paging_token"].string(), response);
        return;
    }
    success({}, std::nullopt, response);
}

// The item of an info read: the first of the mapped rows, or else "results" read as one
// dictionary; restricted items are kept.
ItemPtr infoItemOf(const std::vector<ItemPtr>& items, const JSON& response) {
    if (!items.empty()) {
        return items.front();
    }
    const JSON results = response["results"];
    if (!results.isDictionary()) {
        return nullptr;
    }
    const auto mapped = TBDataManager::itemsFromResult(JSON(json::array({results.raw()})), false);
    return mapped.empty() ? nullptr : mapped.front();
}

TBItemsSuccess infoItemSuccess(TBItemSuccess success) {
    if (!success) {
        return nullptr;
    }
    return [success = std::move(success)](const std::vector<ItemPtr>& items,
                                          const std::optional<std::string>&, const JSON& response) {
        success(infoItemOf(items, response));
    };
}

// The service's words for a field error: "errors" (its "keyNotFound" part, when it has
// one), the texts of the first field joined; "" when there are none.
std::string fieldErrorMessage(const TBFailureInfo& info) {
    const JSON errors = info.responseJSON()["errors"];
    const JSON fields = errors["keyNotFound"].exists() ? errors["keyNotFound"] : errors;
    const auto entries = fields.dictionaryValue();
    if (entries.empty()) {
        return "";
    }
    const JSON& texts = entries.begin()->second;
    if (!texts.isArray()) {
        return texts.stringValue();
    }
    std::string message;
    for (const JSON& text : texts.arrayValue()) {
        if (!message.empty()) {
            message += kFieldErrorsJoin;
        }
        message += text.stringValue();
    }
    return message;
}

json highlightEntity(const Item& item) {
    return json{{"kind", item.typeForHighlightingAPI()}, {"id", item.itemID.value_or("")}};
}

std::string joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const auto& part : parts) {
        if (!text.empty()) {
            text += separator;
        }
        text += part;
    }
    return text;
}

}  // namespace

struct TBDataManager::Catalogue {
    explicit Catalogue(AppContext& context) : requester(context) {}

    TBCatalogueRequester requester;
    std::vector<TBFeaturedSpot> featuredSpots;
    std::optional<TBFeaturedSpot> featuredSpot;
};

TBDataManager::Catalogue& TBDataManager::catalogue() const {
    if (!catalogue_) {
        catalogue_ = std::make_shared<Catalogue>(context_);
    }
    return *catalogue_;
}

// ---- Environment ---------------------------------------------------------------------

void TBDataManager::useProd() {
    useProd(AppContext::current());
}

void TBDataManager::useDev() {
    useDev(AppContext::current());
}

void TBDataManager::useProd(AppContext& context) {
    context.singleton<TBServiceEnvironment>().useProd();
}

void TBDataManager::useDev(AppContext& context) {
    context.singleton<TBServiceEnvironment>().useDev();
}

std::string TBDataManager::baseURL() {
    return baseURL(AppContext::current());
}

std::string TBDataManager::baseURL(AppContext& context) {
    return context.singleton<TBServiceEnvironment>().baseURL();
}

// ---- Generic core --------------------------------------------------------------------

NextPageData TBDataManager::dataForService(const std::string& service,
                                           const nlohmann::json& parameters,
                                           bool ignoreGeoRestricted,
                                           TBItemsSuccess success,
                                           TBFailureBlock failure,
                                           const std::string& method) {
    Answer answer;
    if (success) {
        answer = [ignoreGeoRestricted, success, failure](const json& object) {
            deliverList<ItemPtr>(
                object,
                [ignoreGeoRestricted](const JSON& results) {
                    return itemsFromResult(results, ignoreGeoRestricted);
                },
                success, failure);
        };
    }
    catalogue().requester.call(method, baseURL(context_) + service, parameters, std::move(answer),
                               std::move(failure));
    return NextPageData(service, parameters);
}

NextPageData TBDataManager::fullDataForService(const std::string& service,
                                               const nlohmann::json& parameters,
                                               bool ignoreGeoRestricted,
                                               TBItemsSuccess success,
                                               TBFailureBlock failure) {
    return dataForService(service, parameters, ignoreGeoRestricted, std::move(success),
                          std::move(failure), "GET");
}

NextPageData TBDataManager::artistsForService(const std::string& service,
                                              const nlohmann::json& parameters,
                                              TBArtistsSuccess success,
                                              TBFailureBlock failure,
                                              const std::string& method) {
    Answer answer;
    if (success) {
        answer = [success, failure](const json& object) {
            deliverList<ArtistPtr>(object, &TBDataManager::artistsForResult, success, failure);
        };
    }
    catalogue().requester.call(method, baseURL(context_) + service, parameters, std::move(answer),
                               std::move(failure));
    return NextPageData(service, parameters);
}

void TBDataManager::answerForService(const std::string& method,
                                     const std::string& service,
                                     const nlohmann::json& parameters,
                                     TBJSONSuccess success,
                                     TBFailureBlock failure) {
    Answer answer;
    if (success) {
        answer = [success, failure](const json& object) {
            if (object.is_null()) {
                if (failure) {
                    failure(TBFailureInfo::emptyDictionary());
                }
                return;
            }
            success(JSON(json(object)));
        };
    }
    catalogue().requester.call(method, baseURL(context_) + service, parameters, std::move(answer),
                               std::move(failure));
}

std::vector<ItemPtr> TBDataManager::itemsFromResult(const JSON& result, bool ignoreGeoRestricted) {
    std::vector<ItemPtr> items;
    for (const JSON& element : result.arrayValue()) {
        ItemPtr item = element["type"].stringValue() == kPlaylistType
                           ? Item::parsePlaylistFrom(element)
                           : Item::parseItemFrom(element, ignoreGeoRestricted);
        if (item) {
            items.push_back(std::move(item));
        }
    }
    return items;
}

std::vector<ArtistPtr> TBDataManager::artistsForResult(const JSON& result) {
    std::vector<ArtistPtr> artists;
    for (const JSON& element : result.arrayValue()) {
        if (ArtistPtr artist = Artist::parseFrom(element)) {
            artists.push_back(std::move(artist));
        }
    }
    return artists;
}

// ---- Lists ---------------------------------------------------------------------------

// A page call without a service path can't be repeated: it fails at once.
NextPageData TBDataManager::getMusicFromNowPlaying(const NextPageData& pageData,
                                                   TBItemsSuccess success,
                                                   TBFailureBlock failure) {
    if (!pageData.url()) {
        context_.mainQueue().post([failure = std::move(failure)] {
            if (failure) {
                failure(TBFailureInfo::emptyDictionary());
            }
        });
        return pageData;
    }
    return dataForService(*pageData.url(), pageData.params(), true, std::move(success),
                          std::move(failure));
}

NextPageData TBDataManager::getItems(const std::string& type,
                                     const std::string& genre,
                                     const std::string& period,
                                     int page,
                                     TBItemsSuccess success,
                                     TBFailureBlock failure) {
    std::string service = "chart/" + pathSegment(type) + "/" + pathSegment(period);
    if (!isAllGenres(genre)) {
        service = pathSegment(genre) + "/" + service;
    }
    return dataForService(service, pageParameters(page), true, std::move(success),
                          std::move(failure));
}

NextPageData TBDataManager::getTrending(const std::string& genre,
                                        int page,
                                        TBItemsSuccess success,
                                        TBFailureBlock failure) {
    return dataForService(genreListPath(genre, "trending"), pageParameters(page), true,
                          std::move(success), std::move(failure));
}

NextPageData TBDataManager::getRecent(const std::string& genre,
                                      int page,
                                      TBItemsSuccess success,
                                      TBFailureBlock failure) {
    return dataForService(genreListPath(genre, "recent"), pageParameters(page), true,
                          std::move(success), std::move(failure));
}

NextPageData TBDataManager::getDownloads(const std::string& type,
                                         const std::optional<std::string>& pagingToken,
                                         TBItemsSuccess success,
                                         TBFailureBlock failure) {
    json parameters{{"type", type}, {"limit", kDownloadsPageSize}};
    addPagingToken(parameters, pagingToken);
    return dataForService("user/downloads", parameters, true, std::move(success),
                          std::move(failure));
}

NextPageData TBDataManager::getPlaylistsForTag(const std::string& tag,
                                               int page,
                                               TBItemsSuccess success,
                                               TBFailureBlock failure) {
    if (tag == kTrendingTag) {
        return dataForService("playlist/trending", pageParameters(page), true, std::move(success),
                              std::move(failure));
    }
    return dataForService("tags/" + pathSegment(tag) + "/page/" + pageText(page), json::object(),
                          true, std::move(success), std::move(failure));
}

NextPageData TBDataManager::getMyFeedAtPage(int page,
                                            bool excludeReups,
                                            TBItemsSuccess success,
                                            TBFailureBlock failure) {
    json parameters = pageParameters(page);
    if (excludeReups) {
        parameters["only_uploads"] = "1";
    }
    return dataForService("user/feed", parameters, true, std::move(success), std::move(failure));
}

// The listener's own highlights keep what is restricted in their country: they chose it.
NextPageData TBDataManager::getHighlightsForSlug(const std::string& slug,
                                                 bool myAccount,
                                                 TBItemsSuccess success,
                                                 TBFailureBlock failure) {
    return dataForService("artist/" + pathSegment(slug) + "/pinned", json::object(), !myAccount,
                          std::move(success), std::move(failure));
}

// ---- One item ------------------------------------------------------------------------

void TBDataManager::getAlbumInfoWithIdentifier(const std::string& identifier,
                                               const nlohmann::json& params,
                                               TBItemSuccess success,
                                               TBFailureBlock failure) {
    dataForService(musicInfoPath("album", identifier), params, false,
                   infoItemSuccess(std::move(success)), std::move(failure));
}

void TBDataManager::getSongInfoWithIdentifier(const std::string& identifier,
                                              const nlohmann::json& params,
                                              TBItemSuccess success,
                                              TBFailureBlock failure) {
    dataForService(musicInfoPath("song", identifier), params, false,
                   infoItemSuccess(std::move(success)), std::move(failure));
}

void TBDataManager::getPlaylistInfo(const std::string& identifier,
                                    const nlohmann::json& params,
                                    TBItemSuccess success,
                                    TBFailureBlock failure) {
    dataForService("playlist/" + pathOf(identifier), params, false,
                   infoItemSuccess(std::move(success)), std::move(failure));
}

void TBDataManager::getPlaylistCategoriesWithSuccess(TBJSONSuccess success,
                                                     TBFailureBlock failure) {
    answerForService("GET", "tags/page/1", json{{"include_playlists", "no"}},
                     success ? [success](const JSON& response) { success(response["results"]); }
                             : TBJSONSuccess(),
                     std::move(failure));
}

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
    json parameters{{"q", query}, {"show", category}, {"sort", sort}, {"page", pageText(page)}};
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
    return dataForService("user/search",
                          json{{"q", query}, {"show", category}, {"page", pageText(page)}}, true,
                          std::move(success), std::move(failure));
}

// ---- Accounts ------------------------------------------------------------------------

void TBDataManager::getArtistInfo(const std::string& slug,
                                  TBArtistSuccess success,
                                  TBFailureBlock failure) {
    answerForService(
        "GET", "artist/" + pathSegment(slug), json::object(),
        success ? [success](const JSON& response) {
            const JSON results = response["results"];
            success(results.isDictionary() ? Artist::parseFrom(results) : nullptr);
        }
                : TBJSONSuccess(),
        std::move(failure));
}

NextPageData TBDataManager::getArtistUploads(const std::string& slug,
                                             int page,
                                             bool ignoreGeoRestricted,
                                             TBItemsSuccess success,
                                             TBFailureBlock failure) {
    return dataForService("artist/" + pathSegment(slug) + "/uploads", pageParameters(page),
                          ignoreGeoRestricted, std::move(success), std::move(failure));
}

NextPageData TBDataManager::getArtistFavorites(const std::string& slug,
                                               const std::string& category,
                                               int page,
                                               bool ignoreGeoRestricted,
                                               TBItemsSuccess success,
                                               TBFailureBlock failure) {
    return dataForService("artist/" + pathSegment(slug) + "/favorites",
                          json{{"show", category}, {"page", pageText(page)}}, ignoreGeoRestricted,
                          std::move(success), std::move(failure));
}

NextPageData TBDataManager::getArtistPlaylists(const std::string& slug,
                                               int page,
                                               TBItemsSuccess success,
                                               TBFailureBlock failure) {
    return dataForService("artist/" + pathSegment(slug) + "/playlists", pageParameters(page), true,
                          std::move(success), std::move(failure));
}

NextPageData TBDataManager::getArtistFollowing(const std::string& slug,
                                               const std::optional<std::string>& pagingToken,
                                               TBArtistsSuccess success,
                                               TBFailureBlock failure) {
    return artistsForService("artist/" + pathSegment(slug) + "/following",
                             pagingTokenParameters(pagingToken), std::move(success),
                             std::move(failure));
}

NextPageData TBDataManager::getArtistFollowers(const std::string& slug,
                                               const std::optional<std::string>& pagingToken,
                                               TBArtistsSuccess success,
                                               TBFailureBlock failure) {
    return artistsForService("artist/" + pathSegment(slug) + "/follows",
                             pagingTokenParameters(pagingToken), std::move(success),
                             std::move(failure));
}

NextPageData TBDataManager::getSuggestedFollows(int page,
                                                TBArtistsSuccess successBlock,
                                                TBFailureBlock failure) {
    return artistsForService("user/follow", pageParameters(page), std::move(successBlock),
                             std::move(failure));
}

// ---- Notifications -------------------------------------------------------------------

NextPageData TBDataManager::getNotifications(const std::optional<std::string>& pagingToken,
                                             bool aggregated,
                                             TBNotificationsSuccess success,
                                             TBFailureBlock failure) {
    json parameters = pagingTokenParameters(pagingToken);
    if (!aggregated) {
        parameters["only_unseen"] = "1";
    }
    TBJSONSuccess answer;
    if (success) {
        answer = [success, failure](const JSON& response) {
            const JSON results = response["results"];
            if (!results.isArray()) {
                if (failure) {
                    failure(TBFailureInfo::emptyDictionary());
                }
                return;
            }
            std::vector<TBNotification> notifications;
            for (const JSON& entry : results.arrayValue()) {
                if (auto notification = TBNotification::fromJSON(entry)) {
                    notifications.push_back(std::move(*notification));
                }
            }
            const JSON unseen = response["counters"]["unseen"];
            success(notifications,
                    unseen.exists() && !unseen.isNull() ? std::optional(unseen.int64Value())
                                                        : std::nullopt,
                    response["paging_token"].string());
        };
    }
    const std::string service = "user/native-notifications";
    answerForService("GET", service, parameters, std::move(answer), std::move(failure));
    return NextPageData(service, parameters);
}

void TBDataManager::markNotificationsAsSeen() {
    answerForService("POST", "user/native-notifications/seen", json{{"for_all", "true"}}, nullptr,
                     nullptr);
}

// ---- Account services ----------------------------------------------------------------

void TBDataManager::forgotPassword(const std::string& email,
                                   std::function<void()> success,
                                   TBMessageFailure failure) {
    TBFailureBlock failed;
    if (failure) {
        failed = [failure](const TBFailureInfo& info) { failure(fieldErrorMessage(info)); };
    }
    answerForService("POST", "user/forgot-password", json{{"email", email}},
                     success ? [success](const JSON&) { success(); } : TBJSONSuccess(),
                     std::move(failed));
}

void TBDataManager::checkMusicAvailability(const std::vector<std::string>& ids,
                                           TBIdsSuccess success,
                                           TBFailureBlock failure) {
    TBJSONSuccess answer;
    if (success) {
        answer = [success, failure](const JSON& response) {
            if (!response.isArray()) {
                if (failure) {
                    failure(TBFailureInfo::emptyDictionary());
                }
                return;
            }
            std::vector<std::string> gone;
            for (const JSON& id : response.arrayValue()) {
                if (id.isString() || id.isNumber()) {
                    gone.push_back(id.stringValue());
                }
            }
            success(gone);
        };
    }
    answerForService("POST", "music/status", json{{"music_id", joined(ids, ",")}},
                     std::move(answer), std::move(failure));
}

// ---- Every page ----------------------------------------------------------------------

void TBDataManager::getAllMusicPages(const NextPageData& pageData,
                                     TBItemListBlock success,
                                     TBFailureBlock /*failure*/) {
    json parameters = pageData.params();
    parameters["page"] = "1";
    auto collected = std::make_shared<std::vector<ItemPtr>>();
    getMusicSinglePage(
        pageData, 0, parameters,
        [collected](const std::vector<ItemPtr>& items) {
            collected->insert(collected->end(), items.begin(), items.end());
        },
        [collected, success = std::move(success)] {
            if (success) {
                success(*collected);
            }
        });
}

void TBDataManager::getMusicSinglePage(const NextPageData& pageData,
                                       int page,
                                       const nlohmann::json& extraParams,
                                       TBItemListBlock itemsAddedBlock,
                                       std::function<void()> finishedBlock) {
    auto finish = [finishedBlock] {
        if (finishedBlock) {
            finishedBlock();
        }
    };
    if (!pageData.url()) {
        context_.mainQueue().post(finish);
        return;
    }
    json parameters = extraParams;
    parameters["page"] = pageText(page);
    dataForService(
        *pageData.url(), parameters, true,
        [this, pageData, page, extraParams, itemsAddedBlock, finish](
            const std::vector<ItemPtr>& items, const std::optional<std::string>&, const JSON&) {
            if (items.empty()) {
                finish();
                return;
            }
            if (itemsAddedBlock) {
                itemsAddedBlock(items);
            }
            getMusicSinglePage(pageData, page + 1, extraParams, itemsAddedBlock, finish);
        },
        [finish](const TBFailureInfo&) { finish(); });
}

// ---- Featured spots ------------------------------------------------------------------

void TBDataManager::getFeaturedMusic() {
    answerForService(
        "GET", "featured", json::object(),
        [this](const JSON& response) {
            std::vector<TBFeaturedSpot> spots;
            for (const JSON& entry : response["results"].arrayValue()) {
                TBFeaturedSpot spot = TBFeaturedSpot::fromJSON(entry);
                if (spot.item || spot.artist) {
                    spots.push_back(std::move(spot));
                }
            }
            if (spots.empty()) {
                return;
            }
            catalogue().featuredSpots = std::move(spots);
            pickRandomFeaturedSpot();
        },
        nullptr);
}

const std::vector<TBFeaturedSpot>& TBDataManager::featuredSpots() const {
    return catalogue().featuredSpots;
}

const std::optional<TBFeaturedSpot>& TBDataManager::featuredSpot() const {
    return catalogue().featuredSpot;
}

void TBDataManager::pickRandomFeaturedSpot() {
    auto& spots = catalogue().featuredSpots;
    if (spots.empty()) {
        return;
    }
    const auto index = context_.random().uniform(static_cast<std::uint32_t>(spots.size()));
    catalogue().featuredSpot = spots.at(index);
    context_.notificationCenter().post(TBConstants::TBGlobalNotifications().featuredPostsPulled);
}

// ---- Highlights ----------------------------------------------------------------------

void TBDataManager::addToHighlights(const ItemPtr& item,
                                    TBJSONSuccess success,
                                    TBFailureBlock failure) {
    json entities = json::array();
    if (item) {
        entities.push_back(highlightEntity(*item));
    }
    for (auto& entity : highlightsWithout(item)) {
        entities.push_back(std::move(entity));
    }
    writeHighlights("POST", entities, std::move(success), std::move(failure));
}

void TBDataManager::removeFromHighlights(const ItemPtr& item,
                                         TBJSONSuccess success,
                                         TBFailureBlock failure) {
    writeHighlights("DELETE", highlightsWithout(item), std::move(success), std::move(failure));
}

// The listener's current highlights as entities, less `item` (by id).
nlohmann::json TBDataManager::highlightsWithout(const ItemPtr& item) const {
    json entities = json::array();
    for (const ItemPtr& current : context_.singleton<TBSessionGateHolder>().gate().highlights()) {
        if (current && (!item || current->itemID != item->itemID)) {
            entities.push_back(highlightEntity(*current));
        }
    }
    return entities;
}

void TBDataManager::reorderHighlights(const std::vector<ItemPtr>& items,
                                      TBJSONSuccess success,
                                      TBFailureBlock failure) {
    json entities = json::array();
    for (const ItemPtr& item : items) {
        if (item) {
            json entity = highlightEntity(*item);
            entity["position"] = entities.size();
            entities.push_back(std::move(entity));
        }
    }
    writeHighlights("PUT", entities, std::move(success), std::move(failure));
}

// Straight to the client, not through the generic core: no crash report, no toast, and a
// 401 here is not refreshed.
void TBDataManager::writeHighlights(const std::string& method,
                                    const nlohmann::json& entities,
                                    TBJSONSuccess success,
                                    TBFailureBlock failure) {
    const auto slug = context_.singleton<TBSessionGateHolder>().gate().userSlug();
    if (!slug || slug->empty()) {
        context_.mainQueue().post([failure = std::move(failure)] {
            if (failure) {
                failure(TBFailureInfo::emptyDictionary());
            }
        });
        return;
    }
    const std::string url = baseURL(context_) + "artist/" + pathSegment(*slug) + "/pinned";
    context_.singleton<TBXAuthClientManager>().client().performMethod(
        method, url, json{{"entities", entities.dump()}},
        [success = std::move(success)](AFHTTPRequestOperation&, const json& object) {
            if (success) {
                success(JSON(json(object)));
            }
        },
        [failure = std::move(failure)](AFHTTPRequestOperation& operation, const Error& error) {
            if (failure) {
                failure(TBFailureInfo::of(operation, error));
            }
        });
}

}  // namespace tb
