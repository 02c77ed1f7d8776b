// The accounts and the notifications of TBDataManager.

#include <nlohmann/json.hpp>

#include "api/TBCataloguePaths.h"
#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "model/TBNotification.h"
#include "platform/JSON.h"

namespace tb {

namespace {

using json = nlohmann::json;

}  // namespace

// ---- Accounts ------------------------------------------------------------------------

void TBDataManager::getArtistInfo(const std::string& slug,
                                  TBArtistSuccess success,
                                  TBFailureBlock failure) {
    answerForService(
        "GET", "artist/" + TBCataloguePaths::pathSegment(slug), json::object(),
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
    return dataForService("artist/" + TBCataloguePaths::pathSegment(slug) + "/uploads",
                          TBCataloguePaths::pageParameters(page), ignoreGeoRestricted,
                          std::move(success), std::move(failure));
}

NextPageData TBDataManager::getArtistFavorites(const std::string& slug,
                                               const std::string& category,
                                               int page,
                                               bool ignoreGeoRestricted,
                                               TBItemsSuccess success,
                                               TBFailureBlock failure) {
    return dataForService("artist/" + TBCataloguePaths::pathSegment(slug) + "/favorites",
                          json{{"show", category}, {"page", TBCataloguePaths::pageText(page)}},
                          ignoreGeoRestricted, std::move(success), std::move(failure));
}

NextPageData TBDataManager::getArtistPlaylists(const std::string& slug,
                                               int page,
                                               TBItemsSuccess success,
                                               TBFailureBlock failure) {
    return dataForService("artist/" + TBCataloguePaths::pathSegment(slug) + "/playlists",
                          TBCataloguePaths::pageParameters(page), true, std::move(success),
                          std::move(failure));
}

NextPageData TBDataManager::getArtistFollowing(const std::string& slug,
                                               const std::optional<std::string>& pagingToken,
                                               TBArtistsSuccess success,
                                               TBFailureBlock failure) {
    return artistsForService("artist/" + TBCataloguePaths::pathSegment(slug) + "/following",
                             TBCataloguePaths::pagingTokenParameters(pagingToken),
                             std::move(success), std::move(failure));
}

NextPageData TBDataManager::getArtistFollowers(const std::string& slug,
                                               const std::optional<std::string>& pagingToken,
                                               TBArtistsSuccess success,
                                               TBFailureBlock failure) {
    return artistsForService("artist/" + TBCataloguePaths::pathSegment(slug) + "/follows",
                             TBCataloguePaths::pagingTokenParameters(pagingToken),
                             std::move(success), std::move(failure));
}

NextPageData TBDataManager::getSuggestedFollows(int page,
                                                TBArtistsSuccess successBlock,
                                                TBFailureBlock failure) {
    return artistsForService("user/follow", TBCataloguePaths::pageParameters(page),
                             std::move(successBlock), std::move(failure));
}

// ---- Notifications -------------------------------------------------------------------

NextPageData TBDataManager::getNotifications(const std::optional<std::string>& pagingToken,
                                             bool aggregated,
                                             TBNotificationsSuccess success,
                                             TBFailureBlock failure) {
    json parameters = TBCataloguePaths::pagingTokenParameters(pagingToken);
    if (!aggregated) {
        parameters["only_unseen"] = "1";
    }
    TBJSONSuccess answer;
    if (success) {
        answer = [this, success, failure](const JSON& response) {
            const JSON results = response["results"];
            if (!results.isArray()) {
                if (failure) {
                    failure(TBFailureInfo::emptyDictionary());
                }
                return;
            }
            std::vector<TBNotification> notifications;
            for (const JSON& entry : results.arrayValue()) {
                if (auto notification =
                        TBNotification::fromJSON(entry, managedObjectContext().get())) {
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

}  // namespace tb
