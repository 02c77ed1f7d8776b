#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tunebrook-service/http/FormParams.h"
#include "tunebrook-service/state/LibraryStore.h"

namespace tb::service {

// Reads the "entities" of a highlights write, in any of the forms a client sends them: a
// form field holding the JSON text of the list, form fields flattened the usual way
// ("entities[][kind]", "entities[0][id]"), or a JSON body with an "entities" array. Each
// entity has "kind" and "id" and may have "position". The list comes back in position order.
class HighlightEntities {
  public:
    static constexpr size_t kMaxEntities = 50;

    // Null when no list is found or an entity is malformed.
    static std::optional<std::vector<PinnedEntity>> read(const std::vector<FormParam>& params,
                                                         const std::string& contentType,
                                                         const std::string& body);
};

}  // namespace tb::service
