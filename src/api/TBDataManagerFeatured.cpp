// The featured spots and the highlight writes of TBDataManager.

#include <nlohmann/json.hpp>

#include "api/AFXAuthClient.h"
#include "api/TBCataloguePaths.h"
#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "api/TBSessionGate.h"
#include "api/TBSessionGateHolder.h"
#include "api/TBXAuthClientManager.h"
#include "core/TBConstants.h"
#include "model/Item.h"
#include "platform/JSON.h"
#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"
#include "platform/RandomSource.h"

namespace tb {

namespace {

using json = nlohmann::json;

json highlightEntity(const Item& item) {
    return json{{"kind", item.typeForHighlightingAPI()}, {"id", item.itemID.value_or("")}};
}

}  // namespace

// ---- Featured spots ------------------------------------------------------------------

void TBDataManager::getFeaturedMusic() {
    answerForService(
        "GET", "featured", json::object(),
        [this](const JSON& response) {
            std::vector<TBFeaturedSpot> spots;
            for (const JSON& entry : response["results"].arrayValue()) {
                TBFeaturedSpot spot = TBFeaturedSpot::fromJSON(entry, managedObjectContext().get());
                if (spot.item || spot.artist) {
                    spots.push_back(std::move(spot));
                }
            }
            if (spots.empty()) {
                return;
            }
            featuredSpots_ = std::move(spots);
            pickRandomFeaturedSpot();
        },
        nullptr);
}

const std::vector<TBFeaturedSpot>& TBDataManager::featuredSpots() const {
    return featuredSpots_;
}

const std::optional<TBFeaturedSpot>& TBDataManager::featuredSpot() const {
    return featuredSpot_;
}

void TBDataManager::pickRandomFeaturedSpot() {
    auto& spots = featuredSpots_;
    if (spots.empty()) {
        return;
    }
    const auto index = with_.random.uniform(static_cast<std::uint32_t>(spots.size()));
    featuredSpot_ = spots.at(index);
    with_.notifications.post(TBConstants::TBGlobalNotifications().featuredPostsPulled);
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
    for (const ItemPtr& current : with_.requests.session.gate().highlights()) {
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
    const auto slug = with_.requests.session.gate().userSlug();
    if (!slug || slug->empty()) {
        with_.queue.post([failure = std::move(failure)] {
            if (failure) {
                failure(TBFailureInfo::emptyDictionary());
            }
        });
        return;
    }
    const std::string url =
        serviceBaseURL() + "artist/" + TBCataloguePaths::pathSegment(*slug) + "/pinned";
    with_.requests.clients.client().performMethod(
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
