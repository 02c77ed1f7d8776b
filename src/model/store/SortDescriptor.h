#pragma once

#include <string>

namespace tb {

// Order of fetched rows by one attribute. Nil sorts first when ascending. Text compares
// byte by byte unless `caseInsensitive`, which compares case-folded text.
struct SortDescriptor {
    std::string key;
    bool ascending = true;
    bool caseInsensitive = false;

    static SortDescriptor sortDescriptorWithKey(std::string key, bool ascending) {
        return SortDescriptor{std::move(key), ascending, false};
    }
};

}  // namespace tb
