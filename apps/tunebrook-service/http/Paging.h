#pragma once

#include <optional>
#include <string>

namespace tb::service {

struct ApiCall;

// The two paging schemes: 1-based "page" numbers, and opaque "paging_token"s that carry the
// offset of the next page.
class Paging {
  public:
    static constexpr int kPageSize = 20;
    static constexpr int kMaxPage = 100000;

    // The "page" parameter, 1 when absent; null when it isn't a page number.
    static std::optional<int> page(const ApiCall& call);
    // The offset in a "paging_token" parameter, 0 when absent; null when it is no token.
    static std::optional<int> offset(const ApiCall& call);
    static std::string token(int offset);
    static std::optional<int> decodeToken(const std::string& token);
};

}  // namespace tb::service
