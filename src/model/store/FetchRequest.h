#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "model/store/Predicate.h"
#include "model/store/SortDescriptor.h"

namespace tb {

// What to fetch from one entity: which rows (predicate), in which order (sort descriptors;
// rows of equal keys keep the order they were saved in), how many (0 is no limit), and
// which attributes to read (empty is all; the others keep their defaults in the records).
struct FetchRequest {
    std::string entityName;
    std::optional<Predicate> predicate;
    std::vector<SortDescriptor> sortDescriptors;
    std::size_t fetchLimit = 0;
    std::vector<std::string> propertiesToFetch;
    // There are no sub-entities; kept for the app's calls, which set it.
    bool includesSubentities = true;

    static FetchRequest fetchRequestWithEntityName(std::string name) {
        FetchRequest request;
        request.entityName = std::move(name);
        return request;
    }
};

}  // namespace tb
