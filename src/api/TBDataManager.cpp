#include "api/TBDataManager.h"

#include <nlohmann/json.hpp>

#include "api/TBFailureInfo.h"
#include "api/TBServiceEnvironment.h"
#include "model/Artist.h"
#include "model/Item.h"
#include "platform/JSON.h"
#include "platform/MainQueue.h"
#include "platform/SharedInstance.h"

namespace tb {

namespace {

using json = nlohmann::json;
using Answer = TBCatalogueRequester::Answer;

constexpr const char* kPlaylistType = "playlist";

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

}  // namespace

TBDataManager::TBDataManager(std::string documentsDirectory,
                             ErrorReporter& errors,
                             Catalogue catalogue)
    : TBDataManagerStore(std::move(documentsDirectory), errors),
      with_(catalogue),
      requester_(catalogue.requests) {}

TBDataManager::~TBDataManager() = default;

TBDataManager& TBDataManager::sharedManager() {
    return SharedInstance<TBDataManager>::get();
}

// ---- Environment ---------------------------------------------------------------------

void TBDataManager::useProd() {
    sharedManager().with_.environment.useProd();
}

void TBDataManager::useDev() {
    sharedManager().with_.environment.useDev();
}

std::string TBDataManager::baseURL() {
    return sharedManager().serviceBaseURL();
}

std::string TBDataManager::serviceBaseURL() const {
    return with_.environment.baseURL();
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
        answer = [this, ignoreGeoRestricted, success, failure](const json& object) {
            deliverList<ItemPtr>(
                object,
                [this, ignoreGeoRestricted](const JSON& results) {
                    return itemsFromResult(results, ignoreGeoRestricted,
                                           managedObjectContext().get());
                },
                success, failure);
        };
    }
    requester_.call(method, serviceBaseURL() + service, parameters, std::move(answer),
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
    requester_.call(method, serviceBaseURL() + service, parameters, std::move(answer),
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
    requester_.call(method, serviceBaseURL() + service, parameters, std::move(answer),
                    std::move(failure));
}

std::vector<ItemPtr> TBDataManager::itemsFromResult(const JSON& result,
                                                    bool ignoreGeoRestricted,
                                                    ObjectContext* shared) {
    std::vector<ItemPtr> items;
    for (const JSON& element : result.arrayValue()) {
        ItemPtr item = element["type"].stringValue() == kPlaylistType
                           ? Item::parsePlaylistFrom(element, shared)
                           : Item::parseItemFrom(element, ignoreGeoRestricted, shared);
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

}  // namespace tb
