#pragma once

#include "api/TBCatalogueBlocks.h"
#include "api/TBMusicDataSource.h"

namespace tb {

class MainQueue;
class TBDataManager;
struct TBFailureInfo;

// The music data source over TBDataManager's operations. An identifier that is missing or
// empty rejects with invalidIdentifier and asks nothing; a failed call rejects with failed,
// carrying the service's "errorcode" when its answer held one. An info read that maps to no
// item also rejects with failed.
class TBMusicRepository final : public TBMusicDataSource {
  public:
    TBMusicRepository(TBDataManager& dataManager, MainQueue& queue);

    Promise<std::vector<ItemPtr>> getHighlightsWithUserSlug(const std::optional<std::string>& slug,
                                                            bool myAccount) override;
    Promise<void> addToHighlights(const ItemPtr& item) override;
    Promise<void> removeFromHighlights(const ItemPtr& item) override;

    Promise<ItemPtr> getAlbumInfoWithIdentifier(const std::optional<std::string>& identifier,
                                                const nlohmann::json& params) override;
    Promise<ItemPtr> getSongInfoWithIdentifier(const std::optional<std::string>& identifier,
                                               const nlohmann::json& params) override;
    Promise<ItemPtr> getPlaylistInfo(const std::optional<std::string>& identifier,
                                     const nlohmann::json& params) override;

    // The rejection of a failed call.
    static Error failureError(const TBFailureInfo& info);

  private:
    using InfoRead = void (TBDataManager::*)(const std::string&,
                                             const nlohmann::json&,
                                             TBItemSuccess,
                                             TBFailureBlock);
    using HighlightWrite = void (TBDataManager::*)(const ItemPtr&, TBJSONSuccess, TBFailureBlock);
    Promise<void> writeHighlights(HighlightWrite write, const ItemPtr& item);
    Promise<ItemPtr> readItem(InfoRead read,
                              const std::optional<std::string>& identifier,
                              const nlohmann::json& params);
    template <typename T>
    Promise<T> rejectInvalidIdentifier();

    TBDataManager& dataManager_;
    MainQueue& queue_;
};

}  // namespace tb
