#pragma once

// TBDataManager is the system's data manager: the object store it inherits from the model
// (TBDataManagerStore: startup, managedObjectContext, recreateDatabase, ...) and the
// catalogue client, the service's catalogue operations (getItems, getAlbumInfo...,
// getDownloads, ...) declared here and implemented in files of their own beside this one.
// Code of the model takes the store alone; only the catalogue lives here.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "api/NextPageData.h"
#include "api/TBCatalogueBlocks.h"
#include "api/TBCatalogueRequester.h"
#include "model/TBDataManagerStore.h"
#include "model/TBFeaturedSpot.h"

namespace tb {

class JSON;
class MainQueue;
class NotificationCenter;
class RandomSource;
class TBServiceEnvironment;

class TBDataManager : public TBDataManagerStore {
  public:
    // What the catalogue half talks through.
    struct Catalogue {
        TBServiceEnvironment& environment;
        TBCatalogueRequester::Collaborators requests;
        MainQueue& queue;
        NotificationCenter& notifications;
        RandomSource& random;
    };

    TBDataManager(std::string documentsDirectory, ErrorReporter& errors, Catalogue catalogue);
    ~TBDataManager() override;

    static TBDataManager& sharedManager();

    // The service's catalogue, asked through the form client (TBXAuthClientManager::client)
    // on the base URL below, with the service path appended. Every block runs on the main
    // queue. List operations return the call they made (service path and parameters), so a
    // list or the player can fetch further pages.
    //
    // Paging is by page number or by token, one scheme per operation. A `page` is 0-based
    // and sent as "page" = page + 1; a paging token is sent only when there is one.
    //
    // Failures of the generic calls (everything below but the highlight writes) are
    // recorded with the crash reporter, raise the offline toast when offline or timed out,
    // and, for a 401 while signed in, refresh the token and repeat the call once (see
    // TBCatalogueRequester). The failure block then gets the failure dictionary.

    // The environment: the live or the test host of the key store. The launch chooses
    // before anything else of this class runs; baseURL() ends in a slash. The static forms
    // are the system's, on the shared manager.
    static void useProd();
    static void useDev();
    static std::string baseURL();
    std::string serviceBaseURL() const;

    // The generic core. GET (or `method`, which must be a method the client knows) on
    // baseURL + service; the answer is mapped as follows: a dictionary whose "results" is an
    // array gives the items of itemsFromResult, "paging_token" and the answer; any other
    // answer is handed over whole with no items. A null answer is a failure with the empty
    // dictionary. Nothing runs when `success` is null.
    NextPageData dataForService(const std::string& service,
                                const nlohmann::json& parameters,
                                bool ignoreGeoRestricted,
                                TBItemsSuccess success,
                                TBFailureBlock failure,
                                const std::string& method = "GET");
    // The same GET, for callers that read the whole answer beyond "results".
    NextPageData fullDataForService(const std::string& service,
                                    const nlohmann::json& parameters,
                                    bool ignoreGeoRestricted,
                                    TBItemsSuccess success,
                                    TBFailureBlock failure);
    // As dataForService, with "results" mapped to accounts.
    NextPageData artistsForService(const std::string& service,
                                   const nlohmann::json& parameters,
                                   TBArtistsSuccess success,
                                   TBFailureBlock failure,
                                   const std::string& method = "GET");

    // Playlists (elements whose "type" is "playlist") through the playlist mapper, the rest
    // through the song mapper with the flag (true drops what is restricted in the
    // listener's country). Elements that don't map are skipped.
    // Album tracks are made in `shared` (the store's context; see Item::parseItemFrom).
    static std::vector<ItemPtr> itemsFromResult(const JSON& result,
                                                bool ignoreGeoRestricted,
                                                ObjectContext* shared);
    static std::vector<ArtistPtr> artistsForResult(const JSON& result);

    // Lists.
    NextPageData getMusicFromNowPlaying(const NextPageData& pageData,
                                        TBItemsSuccess success,
                                        TBFailureBlock failure);
    // Charts: `type` "songs" or "albums", a period raw value; a genre other than "all" (or
    // empty) narrows the chart.
    NextPageData getItems(const std::string& type,
                          const std::string& genre,
                          const std::string& period,
                          int page,
                          TBItemsSuccess success,
                          TBFailureBlock failure);
    NextPageData getTrending(const std::string& genre,
                             int page,
                             TBItemsSuccess success,
                             TBFailureBlock failure);
    NextPageData getRecent(const std::string& genre,
                           int page,
                           TBItemsSuccess success,
                           TBFailureBlock failure);
    NextPageData getDownloads(const std::string& type,
                              const std::optional<std::string>& pagingToken,
                              TBItemsSuccess success,
                              TBFailureBlock failure);
    NextPageData getPlaylistsForTag(const std::string& tag,
                                    int page,
                                    TBItemsSuccess success,
                                    TBFailureBlock failure);
    NextPageData getMyFeedAtPage(int page,
                                 bool excludeReups,
                                 TBItemsSuccess success,
                                 TBFailureBlock failure);
    NextPageData getHighlightsForSlug(const std::string& slug,
                                      bool myAccount,
                                      TBItemsSuccess success,
                                      TBFailureBlock failure);

    // One item. An identifier holding "/" ("uploader-slug/album-slug") asks by slug. The
    // item's own "results" dictionary is mapped; restricted items are kept, so that the
    // screen can say why it doesn't play.
    void getAlbumInfoWithIdentifier(const std::string& identifier,
                                    const nlohmann::json& params,
                                    TBItemSuccess success,
                                    TBFailureBlock failure);
    void getSongInfoWithIdentifier(const std::string& identifier,
                                   const nlohmann::json& params,
                                   TBItemSuccess success,
                                   TBFailureBlock failure);
    void getPlaylistInfo(const std::string& identifier,
                         const nlohmann::json& params,
                         TBItemSuccess success,
                         TBFailureBlock failure);

    // The playlist categories: "results" as it came.
    void getPlaylistCategoriesWithSuccess(TBJSONSuccess success, TBFailureBlock failure);

    // Search.
    void searchAutosuggest(const std::string& query, TBJSONSuccess success);
    // The category "artists" gives accounts; any other gives music grouped with
    // TBSearchGrouping. "verified" = "on" only when asked for; "genre" only when not empty.
    NextPageData search(const std::string& query,
                        const std::string& category,
                        const std::string& sort,
                        bool verified,
                        const std::string& genre,
                        int page,
                        TBSearchSuccess success,
                        TBFailureBlock failure);
    NextPageData searchUserAccount(const std::string& query,
                                   const std::string& category,
                                   int page,
                                   TBItemsSuccess success,
                                   TBFailureBlock failure);

    // Accounts.
    void getArtistInfo(const std::string& slug, TBArtistSuccess success, TBFailureBlock failure);
    NextPageData getArtistUploads(const std::string& slug,
                                  int page,
                                  bool ignoreGeoRestricted,
                                  TBItemsSuccess success,
                                  TBFailureBlock failure);
    NextPageData getArtistFavorites(const std::string& slug,
                                    const std::string& category,
                                    int page,
                                    bool ignoreGeoRestricted,
                                    TBItemsSuccess success,
                                    TBFailureBlock failure);
    NextPageData getArtistPlaylists(const std::string& slug,
                                    int page,
                                    TBItemsSuccess success,
                                    TBFailureBlock failure);
    NextPageData getArtistFollowing(const std::string& slug,
                                    const std::optional<std::string>& pagingToken,
                                    TBArtistsSuccess success,
                                    TBFailureBlock failure);
    NextPageData getArtistFollowers(const std::string& slug,
                                    const std::optional<std::string>& pagingToken,
                                    TBArtistsSuccess success,
                                    TBFailureBlock failure);
    NextPageData getSuggestedFollows(int page,
                                     TBArtistsSuccess successBlock,
                                     TBFailureBlock failure);

    // Notifications. An answer whose "results" isn't an array fails with the empty
    // dictionary; entries that don't map are dropped.
    NextPageData getNotifications(const std::optional<std::string>& pagingToken,
                                  bool aggregated,
                                  TBNotificationsSuccess success,
                                  TBFailureBlock failure);
    void markNotificationsAsSeen();

    // The failure gets the service's words for the first field error ("" without any).
    void forgotPassword(const std::string& email,
                        std::function<void()> success,
                        TBMessageFailure failure);

    // The ids among `ids` that the service no longer offers. An answer that isn't an array
    // fails with the empty dictionary.
    void checkMusicAvailability(const std::vector<std::string>& ids,
                                TBIdsSuccess success,
                                TBFailureBlock failure);

    // Every page of a list, one after the other from the first, until a page comes back
    // empty; `success` gets them all. A failed page ends the walk with what was collected,
    // through `success`: `failure` is never called.
    void getAllMusicPages(const NextPageData& pageData,
                          TBItemListBlock success,
                          TBFailureBlock failure);
    // One page (`page` 0-based) of that walk: a non-empty page goes to `itemsAddedBlock` and
    // the next page is asked for; an empty page or a failure calls `finishedBlock`.
    void getMusicSinglePage(const NextPageData& pageData,
                            int page,
                            const nlohmann::json& extraParams,
                            TBItemListBlock itemsAddedBlock,
                            std::function<void()> finishedBlock);

    // Featured spots. getFeaturedMusic keeps the spots of a non-empty answer, picks one at
    // random and posts featuredPostsPulled; an empty or failed answer keeps the last ones.
    void getFeaturedMusic();
    const std::vector<TBFeaturedSpot>& featuredSpots() const;
    const std::optional<TBFeaturedSpot>& featuredSpot() const;
    void pickRandomFeaturedSpot();

    // Highlight writes, on the signed-in listener's list ("artist/<slug>/pinned"). Each
    // sends "entities" as the JSON text of the whole list as it should be afterwards:
    // `item` first, then the current highlights; the current highlights without `item`;
    // `items` in their new order with their positions. They go straight to the client: no
    // crash report, toast or token refresh. Without a signed-in slug nothing is sent and
    // the failure gets the empty dictionary.
    void addToHighlights(const ItemPtr& item, TBJSONSuccess success, TBFailureBlock failure);
    void removeFromHighlights(const ItemPtr& item, TBJSONSuccess success, TBFailureBlock failure);
    void reorderHighlights(const std::vector<ItemPtr>& items,
                           TBJSONSuccess success,
                           TBFailureBlock failure);

  private:
    // A call whose answer is read whole, with no list mapping; a null answer fails with the
    // empty dictionary, as in dataForService.
    void answerForService(const std::string& method,
                          const std::string& service,
                          const nlohmann::json& parameters,
                          TBJSONSuccess success,
                          TBFailureBlock failure);
    nlohmann::json highlightsWithout(const ItemPtr& item) const;
    void writeHighlights(const std::string& method,
                         const nlohmann::json& entities,
                         TBJSONSuccess success,
                         TBFailureBlock failure);

    Catalogue with_;
    TBCatalogueRequester requester_;
    std::vector<TBFeaturedSpot> featuredSpots_;
    std::optional<TBFeaturedSpot> featuredSpot_;
};

}  // namespace tb
