#pragma once

#include <nlohmann/json_fwd.hpp>

namespace tb::service {

struct NotificationRow;
struct ServiceContext;

// One notification as the list answers it: "verb", "created_at", "actor", "object",
// "target", "seen", and for comments "extra_context". Null when what it points at is gone.
class NotificationJson {
  public:
    static nlohmann::json build(ServiceContext& context, const NotificationRow& row);
    // "yyyy-MM-ddTHH:mm:ss.SSSSSS" in UTC.
    static std::string timestamp(double seconds);
};

}  // namespace tb::service
