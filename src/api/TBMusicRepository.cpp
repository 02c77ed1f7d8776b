#include "api/TBMusicRepository.h"

#include <nlohmann/json.hpp>

#include "api/TBDataManager.h"
#include "api/TBFailureInfo.h"
#include "model/Item.h"

namespace tb {

Error TBMusicDataSourceError::make(Code code, const std::string& message) {
    return Error{kDomain, code, message, {}};
}

TBMusicRepository::TBMusicRepository(TBDataManager& dataManager, MainQueue& queue)
    : dataManager_(dataManager), queue_(queue) {}

Error TBMusicRepository::failureError(const TBFailureInfo& info) {
    const auto errorcode = info.errorcode();
    if (!errorcode) {
        return TBMusicDataSourceError::make(TBMusicDataSourceError::failed);
    }
    Error error = TBMusicDataSourceError::make(TBMusicDataSourceError::failed, *errorcode);
    error.userInfo["errorcode"] = *errorcode;
    return error;
}

template <typename T>
Promise<T> TBMusicRepository::rejectInvalidIdentifier() {
    return Promise<T>::rejected(
        queue_, TBMusicDataSourceError::make(TBMusicDataSourceError::invalidIdentifier));
}

Promise<std::vector<ItemPtr>> TBMusicRepository::getHighlightsWithUserSlug(
    const std::optional<std::string>& slug,
    bool myAccount) {
    if (!slug || slug->empty()) {
        return rejectInvalidIdentifier<std::vector<ItemPtr>>();
    }
    auto pending = Promise<std::vector<ItemPtr>>::pending(queue_);
    dataManager_.getHighlightsForSlug(
        *slug, myAccount,
        [resolver = pending.resolver](const std::vector<ItemPtr>& items,
                                      const std::optional<std::string>&,
                                      const JSON&) { resolver.fulfill(items); },
        [resolver = pending.resolver](const TBFailureInfo& info) {
            resolver.reject(failureError(info));
        });
    return pending.promise;
}

Promise<void> TBMusicRepository::addToHighlights(const ItemPtr& item) {
    return writeHighlights(&TBDataManager::addToHighlights, item);
}

Promise<void> TBMusicRepository::removeFromHighlights(const ItemPtr& item) {
    return writeHighlights(&TBDataManager::removeFromHighlights, item);
}

Promise<void> TBMusicRepository::writeHighlights(HighlightWrite write, const ItemPtr& item) {
    if (!item || !item->itemID || item->itemID->empty()) {
        return rejectInvalidIdentifier<void>();
    }
    auto pending = Promise<void>::pending(queue_);
    (dataManager_.*write)(
        item, [resolver = pending.resolver](const JSON&) { resolver.fulfill(); },
        [resolver = pending.resolver](const TBFailureInfo& info) {
            resolver.reject(failureError(info));
        });
    return pending.promise;
}

Promise<ItemPtr> TBMusicRepository::getAlbumInfoWithIdentifier(
    const std::optional<std::string>& identifier,
    const nlohmann::json& params) {
    return readItem(&TBDataManager::getAlbumInfoWithIdentifier, identifier, params);
}

Promise<ItemPtr> TBMusicRepository::getSongInfoWithIdentifier(
    const std::optional<std::string>& identifier,
    const nlohmann::json& params) {
    return readItem(&TBDataManager::getSongInfoWithIdentifier, identifier, params);
}

Promise<ItemPtr> TBMusicRepository::getPlaylistInfo(const std::optional<std::string>& identifier,
                                                    const nlohmann::json& params) {
    return readItem(&TBDataManager::getPlaylistInfo, identifier, params);
}

Promise<ItemPtr> TBMusicRepository::readItem(InfoRead read,
                                             const std::optional<std::string>& identifier,
                                             const nlohmann::json& params) {
    if (!identifier || identifier->empty()) {
        return rejectInvalidIdentifier<ItemPtr>();
    }
    auto pending = Promise<ItemPtr>::pending(queue_);
    (dataManager_.*read)(
        *identifier, params,
        [resolver = pending.resolver](const ItemPtr& item) {
            if (item) {
                resolver.fulfill(item);
            } else {
                resolver.reject(TBMusicDataSourceError::make(TBMusicDataSourceError::failed));
            }
        },
        [resolver = pending.resolver](const TBFailureInfo& info) {
            resolver.reject(failureError(info));
        });
    return pending.promise;
}

}  // namespace tb
