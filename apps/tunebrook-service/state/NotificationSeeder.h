#pragma once

#include <cstdint>

namespace tb::service {

struct ServiceContext;

// A new account gets a few things to look at: two artists follow it (and so appear in its
// followers), and others favourited, reposted, commented on and updated music it may know.
// Fixed by the account's id.
class NotificationSeeder {
  public:
    static void seed(ServiceContext& context, int64_t accountId);
};

}  // namespace tb::service
