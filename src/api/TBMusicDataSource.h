#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "model/ItemAttributes.h"
#include "platform/Error.h"
#include "platform/Promise.h"

namespace tb {

// Why a music data source rejects: the domain "TBMusicDataSourceError" with one of these
// codes. A failure whose answer held the service's "errorcode" carries that code's text as
// its message (and under "errorcode" in its user info).
struct TBMusicDataSourceError {
    static constexpr const char* kDomain = "TBMusicDataSourceError";
    enum Code : std::int64_t {
        invalidIdentifier = 0,  // no identifier (or slug) was given
        failed = 1,             // the service call failed, or gave nothing usable
    };

    static Error make(Code code, const std::string& message = {});
};

// The catalogue reads and highlight writes that the item and highlight screens and the
// onboarding need, as promises.
class TBMusicDataSource {
  public:
    virtual ~TBMusicDataSource() = default;

    virtual Promise<std::vector<ItemPtr>> getHighlightsWithUserSlug(
        const std::optional<std::string>& slug,
        bool myAccount) = 0;
    virtual Promise<void> addToHighlights(const ItemPtr& item) = 0;
    virtual Promise<void> removeFromHighlights(const ItemPtr& item) = 0;

    virtual Promise<ItemPtr> getAlbumInfoWithIdentifier(
        const std::optional<std::string>& identifier,
        const nlohmann::json& params) = 0;
    virtual Promise<ItemPtr> getSongInfoWithIdentifier(const std::optional<std::string>& identifier,
                                                       const nlohmann::json& params) = 0;
    virtual Promise<ItemPtr> getPlaylistInfo(const std::optional<std::string>& identifier,
                                             const nlohmann::json& params) = 0;
};

}  // namespace tb
