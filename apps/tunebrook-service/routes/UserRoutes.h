#pragma once

#include <nlohmann/json_fwd.hpp>

namespace tb::service {

class ApiRouter;
struct AccountRow;
struct ServiceContext;

// The signed-in listener's record, feed and notifications.
class UserRoutes {
  public:
    static void install(ApiRouter& router, ServiceContext& context);
    // The listener's own record, as "user" answers it.
    static nlohmann::json record(ServiceContext& context, const AccountRow& account);
};

}  // namespace tb::service
