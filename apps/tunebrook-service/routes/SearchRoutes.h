#pragma once

namespace tb::service {

class ApiRouter;
struct ServiceContext;

// Search of the catalogue with its filters and the verified heads, suggestions while typing,
// and search within the listener's own library.
class SearchRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
};

}  // namespace tb::service
