#pragma once

#include <string>
#include <vector>

#include "api/TBCatalogueBlocks.h"

namespace tb {

class JSON;

// How a search answer of music (any category but "artists") becomes the rows of the result
// lists: the service names its verified and tastemaker hits apart from "results", and those
// go first, marked as verified results.
class TBSearchGrouping {
  public:
    struct Result {
        std::vector<TBSearchRow> rows;
        bool related = false;  // not exact matches: the list shows the "related" header
    };

    // `response` is the whole answer, `results` its "results" already mapped.
    //  - related: only for the category "music", "related" when it is a number;
    //  - an answer whose "results" isn't an array gives no rows;
    //  - except for "playlists", the head is "tastemaker_artist", "verified_artist" (accounts)
    //    then "tastemaker_playlist", "verified_playlist" (playlists), each one present marked
    //    verifiedSearchResult, followed by the results.
    static Result group(const JSON& response,
                        const std::string& category,
                        const std::vector<ItemPtr>& results);
};

}  // namespace tb
