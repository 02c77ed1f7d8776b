#pragma once

#include <nlohmann/json_fwd.hpp>

namespace tb::service {

struct ApiCall;

// The answers of lists: {"results": [...]} for page-numbered lists, and with a
// "paging_token" when more rows follow for token-paged ones.
class ListReply {
  public:
    static void results(ApiCall& call, const nlohmann::json& items);
    // Reads "page" into the first row's offset; writes a 400 and returns false when "page"
    // is no page number.
    static bool readPage(ApiCall& call, int& offset);
    // Reads "paging_token" into an offset the same way.
    static bool readToken(ApiCall& call, int& offset);
    // `items` were fetched with one row more than a page: that extra row only tells that a
    // next page exists and is dropped.
    static void withToken(ApiCall& call, nlohmann::json items, int offset, int pageSize);
};

}  // namespace tb::service
