#pragma once

#include <string>

namespace tb::service {

struct ServiceContext;

// A listener account for the demo, made at the first start: "demo@tunebrook.test", following
// a few artists, with some favourites and notifications. Its password is drawn at random and
// written to DIR/demo-account.json (owner-only); when that file is gone, a new password is
// drawn and written again.
class DemoAccount {
  public:
    static constexpr const char* kEmail = "demo@tunebrook.test";
    static bool ensure(ServiceContext& context, const std::string& path, std::string& error);
};

}  // namespace tb::service
