#pragma once

#include <map>
#include <optional>
#include <string>

#include "model/Artist.h"
#include "model/ItemAttributes.h"
#include "model/TBNotificationVerb.h"
#include "model/store/StoreTypes.h"

namespace tb {

class JSON;
class ObjectContext;

// One entry of the listener's notifications.
struct TBNotification {
    TBNotificationVerb verb = TBNotificationVerb::unknown;
    std::optional<Date> createdAt;
    ArtistPtr actor;
    ItemPtr object;
    ItemPtr target;
    std::optional<bool> seen;
    // "comment" and "parent" of a comment's "extra_context": a text as it is, a number by
    // its description, an object or array as its compact JSON text.
    std::map<std::string, std::string> commentDict;

    // Nil unless "verb" is one the app knows. Album tracks are made in `shared` when given.
    static std::optional<TBNotification> fromJSON(const JSON& json,
                                                  ObjectContext* shared = nullptr);
};

}  // namespace tb
