// The lists of TBDataManager, and the walk over every page of one.

#include <nlohmann/json.hpp>

#include "api/TBCataloguePaths.h"
#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "model/Item.h"
#include "platform/JSON.h"
#include "platform/MainQueue.h"

namespace tb {

namespace {

using json = nlohmann::json;

constexpr const char* kTrendingTag = "Trending";
constexpr const char* kDownloadsPageSize = "50";

}  // namespace

// ---- Lists ---------------------------------------------------------------------------

// A page call without a service path can't be repeated: it fails at once.
NextPageData TBDataManager::getMusicFromNowPlaying(const NextPageData& pageData,
                                                   TBItemsSuccess success,
                                                   TBFailureBlock failure) {
    if (!pageData.url()) {
        with_.queue.post([failure = std::move(failure)] {
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
    std::string service = "chart/" + TBCataloguePaths::pathSegment(type) + "/" +
                          TBCataloguePaths::pathSegment(period);
    if (!TBCataloguePaths::isAllGenres(genre)) {
        service = TBCataloguePaths::pathSegment(genre) + "/" + service;
    }
    return dataForService(service, TBCataloguePaths::pageParameters(page), true, std::move(success),
                          std::move(failure));
}

NextPageData TBDataManager::getTrending(const std::string& genre,
                                        int page,
                                        TBItemsSuccess success,
                                        TBFailureBlock failure) {
    return dataForService(TBCataloguePaths::genreListPath(genre, "trending"),
                          TBCataloguePaths::pageParameters(page), true, std::move(success),
                          std::move(failure));
}

NextPageData TBDataManager::getRecent(const std::string& genre,
                                      int page,
                                      TBItemsSuccess success,
                                      TBFailureBlock failure) {
    return dataForService(TBCataloguePaths::genreListPath(genre, "recent"),
                          TBCataloguePaths::pageParameters(page), true, std::move(success),
                          std::move(failure));
}

NextPageData TBDataManager::getDownloads(const std::string& type,
                                         const std::optional<std::string>& pagingToken,
                                         TBItemsSuccess success,
                                         TBFailureBlock failure) {
    json parameters{{"type", type}, {"limit", kDownloadsPageSize}};
    TBCataloguePaths::addPagingToken(parameters, pagingToken);
    return dataForService("user/downloads", parameters, true, std::move(success),
                          std::move(failure));
}

NextPageData TBDataManager::getPlaylistsForTag(const std::string& tag,
                                               int page,
                                               TBItemsSuccess success,
                                               TBFailureBlock failure) {
    if (tag == kTrendingTag) {
        return dataForService("playlist/trending", TBCataloguePaths::pageParameters(page), true,
                              std::move(success), std::move(failure));
    }
    return dataForService(
        "tags/" + TBCataloguePaths::pathSegment(tag) + "/page/" + TBCataloguePaths::pageText(page),
        json::object(), true, std::move(success), std::move(failure));
}

NextPageData TBDataManager::getMyFeedAtPage(int page,
                                            bool excludeReups,
                                            TBItemsSuccess success,
                                            TBFailureBlock failure) {
    json parameters = TBCataloguePaths::pageParameters(page);
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
    return dataForService("artist/" + TBCataloguePaths::pathSegment(slug) + "/pinned",
                          json::object(), !myAccount, std::move(success), std::move(failure));
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
        with_.queue.post(finish);
        return;
    }
    json parameters = extraParams;
    parameters["page"] = TBCataloguePaths::pageText(page);
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

}  // namespace tb
