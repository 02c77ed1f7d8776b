#pragma once

#include <cstddef>

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// The three writes of a listener's highlights. Each sends the whole list as it should be
// afterwards (an addition is the new entity with the current ones, a removal the list
// without it, a reorder the list with positions), so each replaces the stored list.
class HighlightRoutes {
  public:
    static constexpr size_t kLimit = 4;
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
