#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "model/ItemAttributes.h"

namespace tb {

class JSON;
struct Artist;
using ArtistPtr = std::shared_ptr<Artist>;
struct TBFailureInfo;
struct TBNotification;

// A row of search results: music, or an account.
using TBSearchRow = std::variant<ItemPtr, ArtistPtr>;

// The blocks of the catalogue's operations.
//
// A list answer hands over (rows, paging token, response): the rows mapped from "results"
// (empty when "results" isn't an array), "paging_token" when it is text, and the whole
// answer, whatever its kind, for callers that read beyond "results".
using TBItemsSuccess = std::function<void(const std::vector<ItemPtr>& items,
                                          const std::optional<std::string>& pagingToken,
                                          const JSON& response)>;
using TBArtistsSuccess = std::function<void(const std::vector<ArtistPtr>& artists,
                                            const std::optional<std::string>& pagingToken,
                                            const JSON& response)>;
using TBFailureBlock = std::function<void(const TBFailureInfo& info)>;

using TBItemSuccess = std::function<void(const ItemPtr& item)>;  // null when none was read
using TBArtistSuccess = std::function<void(const ArtistPtr& artist)>;
using TBJSONSuccess = std::function<void(const JSON& value)>;
using TBItemListBlock = std::function<void(const std::vector<ItemPtr>& items)>;
// The search's rows (verified heads first) and whether they are related, not exact, results.
using TBSearchSuccess = std::function<void(const std::vector<TBSearchRow>& rows, bool related)>;
// The notifications, the unseen count ("counters" "unseen", when present and not null) and
// the next paging token.
using TBNotificationsSuccess = std::function<void(const std::vector<TBNotification>& notifications,
                                                  const std::optional<std::int64_t>& unseen,
                                                  const std::optional<std::string>& pagingToken)>;
using TBIdsSuccess = std::function<void(const std::vector<std::string>& ids)>;
using TBMessageFailure = std::function<void(const std::string& message)>;

}  // namespace tb
