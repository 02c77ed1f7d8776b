#pragma once

#include <functional>
#include <optional>

#include "model/ItemAttributes.h"
#include "platform/Error.h"

namespace tb {

class TBDataManager;

// ItemDAO's refresh of an offline item from the service: asks for the item's web address
// (its page), as sharing an offline item needs. It lives beside the catalogue it asks.
class ItemInfoRefresher {
  public:
    explicit ItemInfoRefresher(TBDataManager& data) : data_(data) {}

    // Success with the service's record, or with the item itself for an album; a failure
    // with the request's error, or with none when the item was not in the answer.
    using RefreshSuccess = std::function<void(const ItemPtr& result)>;
    using RefreshFailure = std::function<void(const std::optional<Error>& error)>;
    void refreshInfoFor(const ItemPtr& item, RefreshSuccess success, RefreshFailure failure);

  private:
    TBDataManager& data_;
};

}  // namespace tb
